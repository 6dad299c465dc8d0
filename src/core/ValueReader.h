// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "core/ValueType.h"

namespace tessel {

class WorldReader;

/// Reads a value of the file format into a field. False if none stands at the cursor; what is known of the
/// fault has then been reported, which may be nothing.
bool readValue(WorldReader& reader, SoField& field, ValueType type);

}  // namespace tessel
