// SPDX-License-Identifier: BSD-3-Clause
#include "script/Room.h"

#include "script/VsError.h"

namespace tessel::script {

bool Room::isLeft(std::size_t sum) {
  if (sum <= limit) return true;
  VsError::postRuntimeError("Attempt to take more than %zu bytes for values of scripts", limit);
  return false;
}

}  // namespace tessel::script
