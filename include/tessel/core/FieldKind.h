// SPDX-License-Identifier: BSD-3-Clause
#pragma once

namespace tessel {

/// What a field is to routes, scripts and files. The numbers are part of `VrmlNode::getFieldType`.
enum class FieldKind : int {
  field = 0,         ///< written to a file if it is not default
  exposedField = 1,  ///< the same; one toolkit field serves as `x`, `set_x` and `x_changed`
  eventIn = 2,       ///< routes write into it; never in a file
  eventOut = 3,      ///< routes read from it; never in a file
  internal = 4,      ///< nobody's business but the node's
};

}  // namespace tessel
