// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "TemporaryFolder.h"

namespace tessel::host {

/// How much of the network a world gets.
struct NetworkLimits {
  std::uint64_t bytes = 256U << 20;        ///< of a file, unpacked
  std::chrono::milliseconds time{30'000};  ///< for a file, from the moment that a server is asked
  int atOnce = 8;                          ///< files
  int redirects = 5;                       ///< for a file
};

/// Gets files by http and https, on a thread of its own, into a temporary folder.
///
/// The two threads share two lists, each behind a lock that is held for as long as it takes to swap a list. A server
/// that can't be reached is not asked again; until it has answered for the first time it is asked for one file only.
class Network {
public:
  struct Answer {
    std::string url;       ///< as it was asked for
    std::string finalUrl;  ///< after redirects
    std::string file;      ///< where the data lies
    std::string failure;   ///< why there are none, else empty
    std::uint64_t world = 0;
  };

  explicit Network(const NetworkLimits& limits = {});
  /// Ends all transfers.
  ~Network();
  Network(const Network&) = delete;
  Network& operator=(const Network&) = delete;

  /// Asks for a URL of http or https. The answer comes with a later `take`.
  void ask(const std::string& url);
  /// The answers that have come since the last call. Never waits for the network.
  std::vector<Answer> take();
  /// Whether there is something to take.
  bool hasAnswers() const;
  /// Waits until an answer is there, for so long at most.
  void wait(std::chrono::milliseconds longest) const;
  /// A descriptor that is readable while there is an answer to take.
  int descriptor() const { return event; }
  /// Ends all transfers; answers to what was asked for before are never given.
  void forget();

private:
  struct Order {
    std::string url;
    std::uint64_t world;
  };
  class Transfers;

  void run();
  void finish(Answer answer);

  const NetworkLimits limits;
  TemporaryFolder folder;
  int event;  // counts answers
  std::atomic<bool> ending = false;
  std::atomic<std::uint64_t> world = 0;  // `forget` begins a new one
  std::mutex lock;                       // of the next two
  std::vector<Order> orders;
  std::vector<Answer> answers;
  void* multi = nullptr;  // libcurl's handle; other threads only wake it up
  std::thread thread;
};

}  // namespace tessel::host
