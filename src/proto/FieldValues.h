// SPDX-License-Identifier: BSD-3-Clause
#pragma once

class SoField;

namespace tessel {

/// Copies a value between fields that a route may join.
void copyValue(const SoField& from, SoField& to);
/// Where a node knows of a node above itself, by a reference that does not keep that one alive, a field that now holds
/// the same knows it in the same way.
void discountAsIn(const SoField& from, SoField& to);

}  // namespace tessel
