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
  files.push_back({std::move(url), std::move(name), askedBy});
  if (askedBy != none) lower(size() - 1, askedBy);
  return size() - 1;
}

void FileChain::lower(int number, int askedBy) {
  File& file = files[static_cast<std::size_t>(number)];
  const File& asker = (*this)[askedBy];
  file.depth = std::max(file.depth, asker.depth + 1);
  const int own = file.levels - file.above;
  file.above = std::max(file.above, asker.levels);
  file.levels = file.above + own;
}

void FileChain::setLevels(int file, int levels) { files[static_cast<std::size_t>(file)].levels = levels; }

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
