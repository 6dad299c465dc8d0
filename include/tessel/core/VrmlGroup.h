// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/VrmlCullingGroup.h>

/// Group: children under one roof.
class TESSEL_API VrmlGroup : public tessel::NodeClass<VrmlGroup, VrmlCullingGroup> {
public:
  static constexpr const char* fileFormatName = "Group";
  static std::span<const tessel::FieldSpec> fields();

  VrmlGroup();
  explicit VrmlGroup(int expectedChildren);

protected:
  ~VrmlGroup() override;
};
