// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

class SoMFString;

namespace tessel {

/// The strings of a field in UCS-2. From the first one on that is no UTF-8, or needs more than 16 bits for a character,
/// they are empty.
std::vector<std::u16string> convertToUCS(const SoMFString& strings);

}  // namespace tessel
