// SPDX-License-Identifier: BSD-3-Clause
#include "FileWatch.h"

#include <sys/stat.h>

namespace tessel::host {

FileWatch::FileWatch(std::string p) : path(std::move(p)), seen(current()), last(seen) {}

bool FileWatch::changed() {
  const Stamp now = current();
  const bool settled = now == last;
  last = now;
  if (now.size < 0 || now == seen || !settled) return false;
  seen = now;
  return true;
}

FileWatch::Stamp FileWatch::current() const {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return {};
  return {status.st_mtim, status.st_size, status.st_ino};
}

}  // namespace tessel::host
