// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <utility>

namespace tessel {

/// Holds one reference on a toolkit object (node, path, engine, list entry) by its own count.
///
/// A new value is referenced before the old one is released, since the old object may own the new one.
template <class T> class SoRef {
public:
  SoRef() = default;
  explicit SoRef(T* object) noexcept : ptr(object) {
    if (ptr) ptr->ref();
  }
  SoRef(const SoRef& other) noexcept : SoRef(other.ptr) {}
  SoRef(SoRef&& other) noexcept : ptr(std::exchange(other.ptr, nullptr)) {}
  ~SoRef() {
    if (ptr) ptr->unref();
  }
  SoRef& operator=(SoRef other) noexcept {
    std::swap(ptr, other.ptr);
    return *this;
  }
  /// Takes a new object, or none.
  void reset(T* object = nullptr) noexcept { *this = SoRef(object); }

  T* get() const noexcept { return ptr; }
  T* operator->() const noexcept { return ptr; }
  T& operator*() const noexcept { return *ptr; }
  explicit operator bool() const noexcept { return ptr != nullptr; }

  /// Gives the reference up without deletion, for functions that return an unreferenced object.
  T* release() noexcept {
    if (ptr) ptr->unrefNoDelete();
    return std::exchange(ptr, nullptr);
  }

private:
  T* ptr = nullptr;
};

}  // namespace tessel
