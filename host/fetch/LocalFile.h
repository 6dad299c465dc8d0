// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace tessel::host {

/// The file on disk that a URL without a server means: `file:` with or without slashes, or a bare path.
///
/// A relative one starts in `folder`. Backslashes are slashes and %XX is a byte; if there is no file of just that
/// name, each of its components is tried regardless of case. Null if nothing is found, if it is no regular file, and
/// for a `file:` URL of another machine.
std::optional<std::filesystem::path> findLocalFile(std::string_view url, const std::filesystem::path& folder);

}  // namespace tessel::host
