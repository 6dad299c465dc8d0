// SPDX-License-Identifier: BSD-3-Clause
#include "LocalFile.h"

#include <algorithm>
#include <cctype>

#include "Url.h"

namespace tessel::host {
namespace {

namespace fs = std::filesystem;

bool isFile(const fs::path& path) {
  std::error_code missing;
  return fs::is_regular_file(path, missing);
}

bool sameButForCase(const std::string& a, const std::string& b) {
  return std::ranges::equal(
      a, b, [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

/// The entry of `folder` that has this name in some writing, the first by name if there are several.
fs::path entryRegardlessOfCase(const fs::path& folder, const fs::path& name) {
  fs::path found;
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
    const fs::path candidate = entry.path().filename();
    if (sameButForCase(candidate.string(), name.string()) && (found.empty() || candidate < found))
      found = candidate;
  }
  return found;
}

fs::path regardlessOfCase(const fs::path& path) {
  fs::path found = path.root_path();
  for (const fs::path& component : path.relative_path()) {
    std::error_code error;
    if (fs::exists(found / component, error)) {
      found /= component;
      continue;
    }
    const fs::path entry = entryRegardlessOfCase(found, component);
    if (entry.empty()) return {};
    found /= entry;
  }
  return found;
}

/// The path of a URL; null for a file of another machine.
std::optional<std::string_view> pathOf(std::string_view url) {
  url.remove_prefix(std::min(url.find_first_not_of(' '), url.size()));
  if (schemeOf(url) != "file") return url;
  url.remove_prefix(url.find(':') + 1);
  if (!url.starts_with("//")) return url;
  url.remove_prefix(2);
  const std::size_t slash = url.find('/');
  const std::string_view machine = url.substr(0, slash);
  if (slash == std::string_view::npos || (!machine.empty() && machine != "localhost")) return std::nullopt;
  return url.substr(slash);
}

}  // namespace

std::optional<fs::path> findLocalFile(std::string_view url, const fs::path& folder) {
  const std::optional<std::string_view> named = pathOf(url);
  if (!named) return std::nullopt;
  for (std::string name : {percentDecoded(*named), std::string(*named)}) {
    if (name.empty() || name.find('\0') != std::string::npos) continue;
    std::ranges::replace(name, '\\', '/');
    const fs::path path = (folder / name).lexically_normal();
    if (isFile(path)) return path;
    if (const fs::path other = regardlessOfCase(path); isFile(other)) return other;
  }
  return std::nullopt;
}

}  // namespace tessel::host
