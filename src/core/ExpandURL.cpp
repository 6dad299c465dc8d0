// SPDX-License-Identifier: BSD-3-Clause
#include <string>
#include <string_view>

#include <Inventor/fields/SoMFString.h>
#include <tessel/core/FetchConvention.h>
#include <tessel/core/VrmlDB.h>

namespace {

// A base URL taken apart: scheme and host, everything up to the last slash, and what is behind it.
struct Base {
  std::string root, dir, file;
};

std::string_view withoutLeadingSpaces(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

Base splitBase(std::string_view base) {
  constexpr std::string_view http = "http://", file = "file:";
  Base parts;
  const std::size_t lastSlash = base.rfind('/');
  const std::string_view trimmed = withoutLeadingSpaces(base);
  if (lastSlash == std::string_view::npos) {
    const std::size_t colon = trimmed.find(':', 1);
    const bool hasScheme = colon != std::string_view::npos && !trimmed.empty();
    parts.root = hasScheme ? trimmed.substr(0, colon + 1) : std::string_view();
    parts.file = hasScheme ? trimmed.substr(colon + 1) : trimmed;
    parts.dir = parts.root;
    return parts;
  }
  parts.dir = base.substr(0, lastSlash + 1);
  parts.file = base.substr(lastSlash + 1);
  if (trimmed.starts_with(http))
    parts.root = trimmed.substr(0, trimmed.find('/', http.size()));
  else if (trimmed.starts_with(file))
    parts.root = file;
  return parts;
}

// Without each "component/../", from the left; a ".." that is no whole component ends it.
std::string withoutDotDots(std::string_view path) {
  std::string kept;
  for (;;) {
    const std::size_t dots = path.find("..");
    kept += path.substr(0, dots);
    if (dots == std::string_view::npos) return kept;
    path.remove_prefix(dots);
    const std::size_t before = kept.ends_with('/') && kept.size() > 1 && path.substr(2).starts_with('/')
                                   ? kept.rfind('/', kept.size() - 2)
                                   : std::string::npos;
    if (before == std::string::npos) return kept.append(path);
    kept.resize(before + 1);
    path.remove_prefix(3);
  }
}

}  // namespace

void VrmlDB::expandURL(const SbString& baseText, const SbString& urlText, SbString& result) {
  std::string_view url = urlText.getString();
  const std::string_view base = baseText.getString();
  std::string full;
  if (url.empty() || base.empty() || url.find(':') != std::string_view::npos) {
    full = url;
  } else {
    const Base parts = splitBase(base);
    url = withoutLeadingSpaces(url);
    if (url.starts_with('/')) {
      full = parts.root;
    } else {
      full = parts.dir;
      if (url.empty() || url.starts_with('#')) {
        const std::size_t cut = parts.file.find_first_of("#?");
        full += cut == 0 ? parts.file : parts.file.substr(0, cut);
      }
    }
    full += url;
  }
  result = withoutDotDots(full).c_str();
}

SbString tessel::fullURL(const SbString& base, const SoMFString& url, int index) {
  SbString full;
  if (index >= 0 && index < url.getNum()) VrmlDB::expandURL(base, url[index], full);
  return full;
}
