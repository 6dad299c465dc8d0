// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <string_view>

namespace tessel::host {

/// `text` with every control character made visible (`\x1b`), so that a world can't play tricks on the
/// terminal it is reported on. Line ends and tabs become single blanks; everything from 128 up passes.
std::string printable(std::string_view text);

/// `text` as the inside of a JSON string: quotes, backslashes and control characters escaped, bytes that are
/// no UTF-8 replaced by U+FFFD.
std::string jsonEscaped(std::string_view text);

/// `count noun` with an `s` where English wants one.
std::string counted(long long count, std::string_view noun);

}  // namespace tessel::host
