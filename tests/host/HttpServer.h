// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <atomic>
#include <chrono>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace tessel::host {

/// A small server on the loopback for as long as it lives, as good or bad as a test wants it.
class HttpServer {
public:
  struct Reply {
    std::string body = {};
    std::string headers = {};  ///< further ones, each with its line end
    std::string status = "200 OK";
    std::chrono::milliseconds delay{0};  ///< before the answer
    long claimed = -1;                   ///< the length that it says it has; -1 for the true one, -2 for none
  };

  explicit HttpServer(std::map<std::string, Reply> replies);
  ~HttpServer();
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  /// `http://127.0.0.1:PORT` and a path.
  std::string url(const std::string& path = {}) const;
  /// How often a path was asked for.
  int count(const std::string& path) const;
  /// How many requests were under way at once, at most.
  int mostAtOnce() const { return most; }

private:
  void run();
  void serve(int connection);

  const std::map<std::string, Reply> replies;
  int port = 0;  // before the listener, which finds it out
  int listener = -1;
  std::atomic<bool> ending = false;
  std::atomic<int> busy = 0, most = 0;
  mutable std::mutex lock;  // of the next
  std::map<std::string, int> counts;
  std::vector<std::thread> connections;  // of the listening thread
  std::thread thread;
};

/// `text` as the program gzip would have it.
std::string gzipped(const std::string& text);

/// A port of the loopback on which nobody listens.
int deafPort();

}  // namespace tessel::host
