// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

namespace tessel::host {

/// The bytes of a world as they lie on disk or come from standard input.
struct WorldFile {
  std::string name;  ///< for messages: the path as given, or `<stdin>`
  std::string bytes;
  std::string failure;  ///< why there are no bytes, empty if there are

  bool readable() const { return failure.empty(); }
};

/// Reads a whole file, or standard input for `-`. Directories, missing and unreadable files, and more than 2
/// GiB end in a `failure`.
WorldFile readWorldFile(const std::string& path);

/// `path`'s last component without its extensions `.wrl`, `.gz`, ...: `stdin` for standard input.
std::string stemOf(const std::string& path);

}  // namespace tessel::host
