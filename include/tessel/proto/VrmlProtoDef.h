// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>

#include <string_view>

#include <Inventor/SbName.h>

class SoField;

/// A prototype: an interface of fields and events, and the body that each instance copies. It stands in no
/// file as a node; a PROTO statement makes it.
class TESSEL_API VrmlProtoDef : public tessel::NodeClass<VrmlProtoDef, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "XXXX_ProtoDef_XXXX";
  static constexpr bool standsInNoFile = true;
  static std::span<const tessel::FieldSpec> fields();
  /// Also enters the PROTO statement and the IS clause with the reader.
  static void initClass();

  SbName name;  ///< the prototype's name

  VrmlProtoDef();

  /// Reads what follows the word PROTO. 0 after a report.
  static int read(tessel::WorldReader& reader);
  /// Reads `IS name` behind the name of a body's field and enters the mapping. False if none stands there, or
  /// with `error` set after a report.
  static bool readIS(tessel::WorldReader& reader, std::string_view fieldName, SoField* field, bool& error);

protected:
  ~VrmlProtoDef() override;
};
