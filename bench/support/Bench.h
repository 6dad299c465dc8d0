// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <benchmark/benchmark.h>

#include <string>
#include <string_view>
#include <vector>

#include <Inventor/nodes/SoNode.h>

#include <tessel/toolkit/SoRef.h>

namespace bench {

/// Starts toolkit and library, once.
void start();

/// Processor time that this process has taken, in seconds: what others do on the machine is not in it.
double processorTime();

/// The middle one of some values.
double median(std::vector<double> values);

/// Times the library and its rival in turns. The counters of the benchmark are the ratio of the medians, `ratio`,
/// and the `limit` that we set ourselves.
class Duel {
public:
  Duel(benchmark::State& s, double atMost) : state(s), limit(atMost) {}
  ~Duel();
  Duel(const Duel&) = delete;
  Duel& operator=(const Duel&) = delete;

  /// Both give their result, which is dropped outside the time.
  template <class Run> auto rival(Run run) { return time(run, theirs); }
  template <class Run> auto library(Run run) {
    auto result = time(run, ours);
    state.SetIterationTime(ours.back());
    return result;
  }

private:
  template <class Run> static auto time(Run& run, std::vector<double>& times) {
    const double from = processorTime();
    auto result = run();
    times.push_back(processorTime() - from);
    return result;
  }

  benchmark::State& state;
  double limit;
  std::vector<double> ours, theirs;
};

/// A file that holds a text for as long as the object lives.
class TextFile {
public:
  explicit TextFile(std::string_view text);
  ~TextFile();
  TextFile(const TextFile&) = delete;
  TextFile& operator=(const TextFile&) = delete;
  const std::string& path() const { return name; }

private:
  std::string name;
};

/// Reads a world; ends the program if it can't be read.
tessel::SoRef<SoNode> readFile(const std::string& path);

}  // namespace bench
