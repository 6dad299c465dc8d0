// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>

#include <Inventor/sensors/SoFieldSensor.h>

#include "script/Room.h"

namespace tessel::script {

/// The memory that scripts have taken in a field of a node, which no object of theirs stands over for long. It is
/// counted as long as the field lives.
class FieldRoom : public SoFieldSensor {
public:
  /// Where it is counted: here if so many bytes are much, or were before, else in `passing`.
  static Room& of(SoField& field, Room& passing, std::size_t bytes);

private:
  void notify(SoNotList* /*list*/) override {}
  void dyingReference() override;

  Room room;
  static inline std::size_t unused = 0;  // those of fields that died
};

}  // namespace tessel::script
