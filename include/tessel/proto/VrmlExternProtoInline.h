// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/proto/VrmlInline.h>

class VrmlExternProtoDef;

/// The node that fetches the file of an external prototype. It stands in no file and in no scene.
class TESSEL_API VrmlExternProtoInline : public tessel::NodeClass<VrmlExternProtoInline, VrmlInline> {
public:
  static constexpr const char* fileFormatName = "XXXX_ExternProtoInline_XXXX";
  static constexpr bool standsInNoFile = true;
  static std::span<const tessel::FieldSpec> fields();

  VrmlExternProtoInline();

  /// Who needs the file; not owned. It says so when it goes.
  void setOwner(VrmlExternProtoDef* definition) { owner = definition; }

  /// The answer of the host: the definition is looked for in the names of the file, the world in it is of no use.
  void setChildData(VrmlNode* world) override;
  void fetchFailed() override;

protected:
  ~VrmlExternProtoInline() override;

private:
  VrmlExternProtoDef* owner = nullptr;
};
