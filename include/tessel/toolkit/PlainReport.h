// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

#include <string_view>

namespace tessel {

/// Takes a text that is meant for standard error, with its own line ends.
using PlainReportHandler = void(std::string_view text, void* data);

/// Puts a host's handler in the place of standard error; null for standard error again. It is for the few texts
/// that are neither read errors nor complaints of the live world, which the toolkit's handlers get.
TESSEL_API void setPlainReportHandler(PlainReportHandler* handler, void* data);

/// Hands a text to the handler.
TESSEL_API void postPlain(std::string_view text);

}  // namespace tessel
