// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace tessel::host {

/// The scheme of a URL in small letters, empty if it has none. A single letter is a drive, no scheme.
std::string schemeOf(std::string_view url);
/// Whether the URL is one of http or https.
bool isNetworkUrl(std::string_view url);
/// `https://host` of `https://host/path`, empty for other kinds of URLs.
std::string_view serverOf(std::string_view url);
/// A URL without the fragment at its end, which is nothing to ask a server or a disk for.
std::string_view withoutFragment(std::string_view url);
/// What stands behind the last number sign.
std::string_view fragmentOf(std::string_view url);

/// `text` with each %XX made a byte. What is no such escape stays.
std::string percentDecoded(std::string_view text);
/// A URL for a network with backslashes as slashes and everything escaped that may not stand in one.
std::string tidiedForNetwork(std::string_view url);

/// `file:///...` for a path, made absolute first.
std::string fileUrlOf(const std::filesystem::path& path);

}  // namespace tessel::host
