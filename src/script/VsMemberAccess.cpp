// SPDX-License-Identifier: BSD-3-Clause
#include "script/VsMemberAccess.h"

#include <utility>

#include "script/VsField.h"

namespace tessel::script {

void VsMemberAccess::send() {
  const Value to = std::move(target);
  const Value value = std::move(assigned);
  to.object()->receive(value);
}

}  // namespace tessel::script
