// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/proto/VrmlInline.h>

/// The node that fetches the file of an external prototype. It stands in no file and in no scene.
class TESSEL_API VrmlExternProtoInline : public tessel::NodeClass<VrmlExternProtoInline, VrmlInline> {
public:
  static constexpr const char* fileFormatName = "XXXX_ExternProtoInline_XXXX";
  static constexpr bool standsInNoFile = true;
  static std::span<const tessel::FieldSpec> fields();

  VrmlExternProtoInline();

protected:
  ~VrmlExternProtoInline() override;
};
