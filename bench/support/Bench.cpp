// SPDX-License-Identifier: BSD-3-Clause
#include "support/Bench.h"

#include <stdlib.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include <Inventor/SoDB.h>
#include <Inventor/SoInput.h>
#include <Inventor/SoInteraction.h>

#include <tessel/core/VrmlDB.h>

namespace bench {

void start() {
  static const bool once = [] {
    SoDB::init();
    SoInteraction::init();
    VrmlDB::init();
    return true;
  }();
  static_cast<void>(once);
}

double processorTime() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

double median(std::vector<double> values) {
  if (values.empty()) return 0;
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

Duel::~Duel() {
  if (ours.empty() || theirs.empty()) return;
  state.counters["ratio"] = median(ours) / median(theirs);
  state.counters["limit"] = limit;
}

TextFile::TextFile(std::string_view text) : name("/tmp/tessel-bench-XXXXXX") {
  const int file = mkstemp(name.data());
  if (file < 0) std::abort();
  for (std::size_t done = 0; done < text.size();) {
    const ssize_t n = write(file, text.data() + done, text.size() - done);
    if (n <= 0) std::abort();
    done += static_cast<std::size_t>(n);
  }
  close(file);
}

TextFile::~TextFile() { std::remove(name.c_str()); }

tessel::SoRef<SoNode> readFile(const std::string& path) {
  SoInput in;
  if (!in.openFile(path.c_str())) std::abort();
  tessel::SoRef<SoNode> world(VrmlDB::read(&in));
  if (!world) std::abort();
  return world;
}

}  // namespace bench
