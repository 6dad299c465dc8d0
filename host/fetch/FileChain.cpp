// SPDX-License-Identifier: BSD-3-Clause
#include "FileChain.h"

#include <algorithm>
#include <charconv>

#include "Url.h"

namespace tessel::host {
namespace {

constexpr std::string_view liveMark = "live";

}  // namespace

void FileChain::begin(std::string url, std::string name) {
  files.clear();
  anyFromNetwork = false;
  add(std::move(url), std::move(name), none);
}

int FileChain::add(std::string url, std::string name, int askedBy) {
  anyFromNetwork = anyFromNetwork || isNetworkUrl(url);
  const int depth = askedBy == none ? 0 : (*this)[askedBy].depth + 1;
  files.push_back({std::move(url), std::move(name), askedBy, depth});
  return size() - 1;
}

void FileChain::lower(int file, int askedBy) {
  int& depth = files[static_cast<std::size_t>(file)].depth;
  depth = std::max(depth, (*this)[askedBy].depth + 1);
}

std::string FileChain::baseOf(int file) const {
  const std::string& url = (*this)[file].url;
  return file == 0 ? url : url + '#' + std::to_string(file);
}

std::string FileChain::baseOfLive() const { return (files[0].url + '#').append(liveMark); }

int FileChain::fileOf(std::string_view base) const {
  const std::string_view number = fragmentOf(base);
  int file = 0;
  std::from_chars(number.data(), number.data() + number.size(), file);
  return file >= 0 && file < size() ? file : 0;
}

bool FileChain::isFromNetwork(std::string_view base) const {
  return schemeOf(base) != "file" || (fragmentOf(base) == liveMark && anyFromNetwork);
}

bool FileChain::leadsTo(int file, std::string_view url) const {
  for (; file != none; file = (*this)[file].askedBy)
    if ((*this)[file].url == url) return true;
  return false;
}

}  // namespace tessel::host
