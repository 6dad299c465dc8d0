// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

#include <sys/types.h>
#include <ctime>

namespace tessel::host {

/// Notices that a file on disk was written anew, also when it was replaced by another of its name.
class FileWatch {
public:
  explicit FileWatch(std::string path);

  /// True once for each change, as soon as the file has stayed the same from one call to the next: a file
  /// that is just being written isn't ready. Missing files count as unchanged.
  bool changed();

private:
  struct Stamp {
    timespec modified{};
    off_t size = -1;
    ino_t inode = 0;
    bool operator==(const Stamp& other) const {
      return modified.tv_sec == other.modified.tv_sec && modified.tv_nsec == other.modified.tv_nsec &&
             size == other.size && inode == other.inode;
    }
  };
  Stamp current() const;

  std::string path;
  Stamp seen;  // what the last answer was about
  Stamp last;  // what the last call found
};

}  // namespace tessel::host
