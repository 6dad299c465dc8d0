// SPDX-License-Identifier: BSD-3-Clause
#pragma once

namespace tessel {

/// What the prototypes are at while nodes are made, for those nodes that behave otherwise meanwhile (a sensor of
/// time in the body of a definition never runs, one in an instance waits until the instance is complete).
///
/// The prototypes, which stand above, keep it up to date; everybody else only looks. Without prototypes it stays as
/// it is here.
struct PrototypeScope {
  /// How many definitions are being read, one inside the other: set by who pushes and pops a definition.
  inline static int openDefinitions = 0;
  /// The outermost instance that is being set up, null outside: only compared, never followed.
  inline static const void* openInstance = nullptr;
};

}  // namespace tessel
