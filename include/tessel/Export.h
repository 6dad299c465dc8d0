// SPDX-License-Identifier: BSD-3-Clause
#pragma once

/// Marks what the shared library offers to hosts; everything else in it is hidden.
///
/// Stands between `class` and the name of a public class, or before a public function:
///
///     class TESSEL_API VrmlBox : public VrmlGeometry { ... };
#define TESSEL_API __attribute__((visibility("default")))
