// SPDX-License-Identifier: BSD-3-Clause
#include "core/StackRoom.h"

#include <pthread.h>

#include <cstddef>
#include <cstdint>

namespace tessel {

namespace {

struct Stack {
  std::uintptr_t lowest = 0, middle = 0;  // it grows downwards

  Stack() {
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0) return;
    void* address = nullptr;
    std::size_t size = 0;
    if (pthread_attr_getstack(&attributes, &address, &size) == 0) {
      lowest = reinterpret_cast<std::uintptr_t>(address);
      middle = lowest + size / 2;
    }
    pthread_attr_destroy(&attributes);
  }
};

}  // namespace

bool stackIsShort() {
  thread_local const Stack stack;
  // A host may run us on a stack of its own making, of which nothing is known.
  const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
  return here < stack.middle && here >= stack.lowest;
}

}  // namespace tessel
