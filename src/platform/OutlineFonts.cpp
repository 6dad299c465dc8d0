// SPDX-License-Identifier: BSD-3-Clause
#include "platform/OutlineFonts.h"

namespace tessel {

OutlineFont::~OutlineFont() = default;
OutlineFonts::~OutlineFonts() = default;

}  // namespace tessel
