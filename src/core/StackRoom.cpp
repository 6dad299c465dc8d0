// SPDX-License-Identifier: BSD-3-Clause
#include "core/StackRoom.h"

#include <pthread.h>

#include <cstddef>

namespace tessel {

void LowerStack::look() {
  size = 0;
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return;
  void* lowest = nullptr;
  std::size_t whole = 0;
  if (pthread_attr_getstack(&attributes, &lowest, &whole) == 0) {
    begin = reinterpret_cast<std::uintptr_t>(lowest);
    size = whole / 2;
  }
  pthread_attr_destroy(&attributes);
}

}  // namespace tessel
