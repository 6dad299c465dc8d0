// SPDX-License-Identifier: BSD-3-Clause
#include "Url.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace tessel::host {
namespace {

constexpr char hexDigits[] = "0123456789ABCDEF";

void appendEscaped(std::string& out, char c) {
  const auto byte = static_cast<unsigned char>(c);
  out += '%';
  out += hexDigits[byte >> 4];
  out += hexDigits[byte & 15];
}

bool isLetter(char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0; }

}  // namespace

std::string schemeOf(std::string_view url) {
  const std::size_t first = std::min(url.find_first_not_of(' '), url.size());
  url.remove_prefix(first);
  const std::size_t colon = url.find(':');
  if (colon == std::string_view::npos || colon < 2 || !isLetter(url[0])) return {};
  std::string scheme(url.substr(0, colon));
  for (char& c : scheme) {
    if (!std::isalnum(static_cast<unsigned char>(c)) && c != '+' && c != '-' && c != '.') return {};
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return scheme;
}

bool isNetworkUrl(std::string_view url) {
  const std::string scheme = schemeOf(url);
  return scheme == "http" || scheme == "https";
}

std::string_view serverOf(std::string_view url) {
  if (!isNetworkUrl(url)) return {};
  const std::size_t slashes = url.find("//");
  if (slashes == std::string_view::npos) return {};
  return url.substr(0, url.find_first_of("/\\?#", slashes + 2));
}

std::string_view withoutFragment(std::string_view url) { return url.substr(0, url.rfind('#')); }

std::string_view fragmentOf(std::string_view url) {
  const std::size_t sign = url.rfind('#');
  return sign == std::string_view::npos ? std::string_view() : url.substr(sign + 1);
}

std::string percentDecoded(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    unsigned byte = 0;
    const char* digits = text.data() + i + 1;
    const bool room = text[i] == '%' && text.size() - i > 2;
    if (room && std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2) {
      out += static_cast<char>(byte);
      i += 2;
    } else {
      out += text[i];
    }
  }
  return out;
}

std::string tidiedForNetwork(std::string_view url) {
  url.remove_prefix(std::min(url.find_first_not_of(' '), url.size()));
  std::string out;
  for (const char c : url) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\\')
      out += '/';
    else if (byte <= ' ' || byte >= 127 || std::string_view("\"<>^`{|}").find(c) != std::string_view::npos)
      appendEscaped(out, c);
    else
      out += c;
  }
  return out;
}

std::string fileUrlOf(const std::filesystem::path& path) {
  std::error_code ignored;
  const std::filesystem::path whole = std::filesystem::absolute(path, ignored).lexically_normal();
  std::string url = "file://";
  for (const char c : whole.string())
    if (static_cast<unsigned char>(c) <= ' ' || c == '%' || c == '#' || c == '?')
      appendEscaped(url, c);
    else
      url += c;
  return url;
}

}  // namespace tessel::host
