// SPDX-License-Identifier: BSD-3-Clause
#include "WorldFile.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tessel::host {
namespace {

constexpr std::size_t maxBytes = std::size_t{1} << 31;

/// Appends all that `descriptor` holds; gives an error text or nothing.
std::string slurp(int descriptor, std::string& bytes) {
  struct stat status {};
  if (fstat(descriptor, &status) != 0) return std::strerror(errno);
  if (S_ISDIR(status.st_mode)) return std::strerror(EISDIR);
  // One byte more than the file says, so that its end is met without growing the string.
  if (S_ISREG(status.st_mode)) bytes.resize(std::min(static_cast<std::size_t>(status.st_size), maxBytes) + 1);
  std::size_t filled = 0;
  for (;;) {
    if (filled > maxBytes) return "larger than 2 GiB";
    if (filled == bytes.size()) bytes.resize(std::max<std::size_t>(2 * filled, 1 << 16));
    const ssize_t got = read(descriptor, bytes.data() + filled, bytes.size() - filled);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return std::strerror(errno);
    if (got == 0) break;
    filled += static_cast<std::size_t>(got);
  }
  bytes.resize(filled);
  return {};
}

}  // namespace

WorldFile readWorldFile(const std::string& path) {
  const bool fromInput = path == "-";
  WorldFile file{fromInput ? "<stdin>" : path, {}, {}};
  const int descriptor = fromInput ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) {
    file.failure = std::strerror(errno);
    return file;
  }
  file.failure = slurp(descriptor, file.bytes);
  if (!fromInput) close(descriptor);
  if (!file.readable()) file.bytes.clear();
  return file;
}

std::string stemOf(const std::string& path) {
  if (path == "-") return "stdin";
  const std::string name = std::filesystem::path(path).filename().string();
  const std::size_t dot = name.find('.', 1);
  return name.substr(0, dot);
}

}  // namespace tessel::host
