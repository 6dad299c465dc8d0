// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>

/// Stands in a child list where a file has NULL, since toolkit child lists hold no null pointers.
class TESSEL_API VrmlNULL : public tessel::NodeClass<VrmlNULL, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "NULL";
  static std::span<const tessel::FieldSpec> fields();

  VrmlNULL();

protected:
  ~VrmlNULL() override;
};
