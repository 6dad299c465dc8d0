// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/VrmlBaseGroup.h>

/// An instance of a prototype. Its only child, the first node of the copied body, acts in its place.
class TESSEL_API VrmlProtoUse : public tessel::NodeClass<VrmlProtoUse, VrmlBaseGroup> {
public:
  static constexpr const char* fileFormatName = "XXXX_ProtoUse_XXXX";
  static constexpr bool standsInNoFile = true;
  static std::span<const tessel::FieldSpec> fields();

  VrmlProtoUse();

protected:
  ~VrmlProtoUse() override;
};
