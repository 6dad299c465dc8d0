// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/VrmlCullingGroup.h>

/// WriteGroup: a group whose children are written at file level, without a line of its own, so that a whole
/// world can be written from one root.
class TESSEL_API VrmlWriteGroup : public tessel::NodeClass<VrmlWriteGroup, VrmlCullingGroup> {
public:
  static constexpr const char* fileFormatName = "WriteGroup";
  static std::span<const tessel::FieldSpec> fields();

  VrmlWriteGroup();
  explicit VrmlWriteGroup(int expectedChildren);

protected:
  ~VrmlWriteGroup() override;
};
