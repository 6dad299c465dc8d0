// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/proto/VrmlProtoDef.h>

#include <Inventor/fields/SoMFString.h>

/// A prototype whose body is in another file: the interface, and where to look for the body.
class TESSEL_API VrmlExternProtoDef : public tessel::NodeClass<VrmlExternProtoDef, VrmlProtoDef> {
public:
  static constexpr const char* fileFormatName = "XXXX_ExternProtoDef_XXXX";
  static std::span<const tessel::FieldSpec> fields();
  /// Also enters the EXTERNPROTO statement with the reader.
  static void initClass();

  /// Alternatives, the best first, each with "#" and a name at its end for a certain prototype of the file.
  /// No field of the interface.
  SoMFString url;

  VrmlExternProtoDef();

  /// Reads what follows the word EXTERNPROTO. 0 after a report.
  static int read(tessel::WorldReader& reader);

protected:
  ~VrmlExternProtoDef() override;
};
