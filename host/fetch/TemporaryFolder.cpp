// SPDX-License-Identifier: BSD-3-Clause
#include "TemporaryFolder.h"

#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <unistd.h>

namespace tessel::host {
namespace {

constexpr int endingSignals[] = {SIGINT, SIGTERM, SIGHUP};

// What a signal handler must know, in a form that it may read. Files are named by their numbers.
struct Place {
  char folder[PATH_MAX] = "";
  std::atomic<int> files{0};
};
Place place;

void numberAsName(int number, char* name) {
  char reversed[12];
  int length = 0;
  do reversed[length++] = static_cast<char>('0' + number % 10);
  while ((number /= 10) > 0);
  for (int i = 0; i < length; ++i) name[i] = reversed[length - 1 - i];
  name[length] = 0;
}

// Only what a signal handler may call.
void removeAll() {
  if (place.folder[0] == 0) return;
  const int folder = open(place.folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  for (int i = 0; i < place.files; ++i) {
    char name[12];
    numberAsName(i, name);
    unlinkat(folder, name, 0);
  }
  close(folder);
  rmdir(place.folder);
  place.folder[0] = 0;
}

void endBySignal(int number) {
  removeAll();
  signal(number, SIG_DFL);
  raise(number);
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
  std::error_code none;
  const std::filesystem::path parent = std::filesystem::temp_directory_path(none);
  std::string name = (none ? std::filesystem::path("/tmp") : parent) / "tessel-XXXXXX";
  if (name.size() >= sizeof place.folder || !mkdtemp(name.data())) {
    error = "no temporary folder: " + std::string(std::strerror(errno));
    return;
  }
  place.files = 0;
  std::strcpy(place.folder, name.c_str());
  for (const int number : endingSignals) {
    const auto before = std::signal(number, endBySignal);
    if (before == SIG_IGN) std::signal(number, SIG_IGN);
  }
}

TemporaryFolder::~TemporaryFolder() {
  for (const int number : endingSignals)
    if (std::signal(number, SIG_DFL) == SIG_IGN) std::signal(number, SIG_IGN);
  removeAll();
}

int TemporaryFolder::newFile(std::string& path) {
  if (!error.empty()) return -1;
  path = std::string(place.folder) + '/' + std::to_string(place.files++);
  return open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
}

}  // namespace tessel::host
