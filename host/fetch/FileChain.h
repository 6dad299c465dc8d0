// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tessel::host {

/// The files that a world is put together from, each as often as it is read, and which of them asked for which.
///
/// The nodes of a file keep its base URL, so the base says which reading of the file a node comes from: by its
/// fragment, which takes no part when URLs are resolved.
class FileChain {
public:
  /// One reading of one file.
  struct File {
    std::string url;   ///< absolute, after redirects, without a fragment
    std::string name;  ///< for messages
    int askedBy = -1;  ///< the file that asked for it
    int depth = 0;     ///< how many files are above it; 0 for the world itself
    int above = 0;     ///< how many levels of nodes may be above its own
    int levels = 0;    ///< and with its own
  };
  static constexpr int none = -1;

  /// Begins a world.
  void begin(std::string url, std::string name);
  /// Enters another file and gives its number.
  int add(std::string url, std::string name, int askedBy);
  /// A file that is read once for many: it is as deep as the deepest of those that ask.
  void lower(int file, int askedBy);
  /// The levels of nodes in a file that has been read, those above it included.
  void setLevels(int file, int levels);

  const File& operator[](int file) const { return files[static_cast<std::size_t>(file)]; }
  int size() const { return static_cast<int>(files.size()); }

  /// The base URL for the nodes of a file.
  std::string baseOf(int file) const;
  /// The base URL for nodes that are made while the world lives.
  std::string baseOfLive() const;
  /// The file that the nodes with this base are from. Those made later count to the world itself.
  int fileOf(std::string_view base) const;
  /// Whether nodes with this base may have come over the network or been made by what has.
  bool isFromNetwork(std::string_view base) const;
  /// Whether `url` is the file itself or one of those that led to it.
  bool leadsTo(int file, std::string_view url) const;

private:
  std::vector<File> files;
  bool anyFromNetwork = false;
};

}  // namespace tessel::host
