// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <tessel/core/VrmlDB.h>
#include <tessel/toolkit/SoRef.h>

#include "../World.h"
#include "FileChain.h"
#include "Network.h"
#include "Occurrences.h"
#include "Requests.h"

namespace tessel::host {

class Diagnostics;
enum class Severity;

/// What a Fetcher may do.
struct FetchOptions {
  int maxChain = 32;                                     ///< files that lead to one another
  int maxFiles = 10'000;                                 ///< read for one world
  std::uint64_t maxTotalBytes = std::uint64_t{2} << 30;  ///< of all of them
  double maxShown = 100e6;                               ///< nodes that a traversal of all of them meets
  bool network = true;                                   ///< whether anything is asked of it
  NetworkLimits limits;
  std::chrono::milliseconds patience{60'000};  ///< how long `settle` waits for the network
  bool missingIsError = false;  ///< report what could not be had by any alternative as an error
};

/// Gets what worlds ask for, and gives it to the nodes that asked.
///
/// Requests are noted when the library calls, in the middle of whatever it does, and are answered by `answer`, which
/// the loop of the program calls between ticks: at the start of a frame, before anything else. A world from the
/// network gets nothing from the disk. There is one at a time, and it speaks for one world at a time.
class Fetcher {
public:
  explicit Fetcher(Diagnostics& diagnostics, const FetchOptions& options = {});
  /// Nothing is asked for any more, and what was is forgotten.
  ~Fetcher();
  Fetcher(const Fetcher&) = delete;
  Fetcher& operator=(const Fetcher&) = delete;

  /// Reads a world, from a path, a URL, or from standard input for `-`, and from now on fetches for this world alone. What
  /// is wrong with it goes to the diagnostics, which must have begun a world; after a failure at least one message
  /// has.
  World open(const std::string& path, const ReadOptions& options);

  /// Answers all requests that can be answered now, those too that come up meanwhile; how many it were. Goes on for
  /// `budget`, then leaves the rest to the next call.
  int answer(std::chrono::nanoseconds budget = std::chrono::nanoseconds::max());
  /// How many requests wait for their answer.
  int pending() const;
  /// Whether `answer` has something to do.
  bool hasAnswers() const { return !queue.empty() || (network && network->hasAnswers()); }
  /// A descriptor that is readable when the network has brought something, -1 if nothing was asked of it.
  int descriptor() const { return network ? network->descriptor() : -1; }

  /// Asks for every Inline of a world that is not there yet, and for those that come with them, until there are no
  /// more. With `all`, also for those that no traversal of the scene as it stands would come to. Waits for the
  /// network until its patience ends, and reports what has not come by then.
  void settle(SoNode* root, bool all);

private:
  /// The bytes of a URL, or why there are none.
  struct Data {
    std::string bytes, failure;
    std::string url;   // where they came from in the end, without a fragment
    std::string name;  // for messages
  };
  /// A file of prototypes, read once for all who ask.
  struct Library {
    int stack;
    int file;
  };

  void forgetWorld();
  void takeFromNetwork();
  void askNetwork(const std::string& url);
  Data openWorld(const std::string& path);

  using RequestPtr = std::unique_ptr<Request>;
  void serve(RequestPtr request);
  /// Where the request leads: a URL of the network, or the URL of a file on this disk. Empty with a `failure`.
  std::string target(const Request& request, std::string& failure) const;
  std::string limitReached(int asker, bool forWorld) const;
  Data readLocal(const std::string& url) const;
  static Data readDownloaded(const Network::Answer& answer);
  void give(Request& request, const std::string& url);
  void giveWorld(WorldRequest& request, const std::string& url, const Data& data);
  void giveLibrary(const WorldRequest& request, const Library& library);
  void giveFile(FileRequest& request, const std::string& url);
  /// Reads a file under a stack of its own and gives the number of the stack.
  int readWorld(const Data& data, int file, SoRef<SoNode>& root, ReadStatus& status);
  void fail(Request& request, std::string_view why, Severity atLeast);
  const std::string& nameOfAsker(const Request& request) const;
  static int askForMissing(SoNode* root, bool all);

  Diagnostics& diagnostics;
  FetchOptions options;
  ReadOptions readOptions;
  FileChain files;
  std::deque<RequestPtr> queue;
  std::map<std::string, Library> libraries;               // by URL
  std::map<std::string, std::vector<RequestPtr>> coming;  // what waits for the network, by URL
  std::map<std::string, Network::Answer> downloaded;      // what the network gave to this world, by URL
  std::unique_ptr<Network> network;                       // from the first request on
  std::uint64_t totalBytes = 0;
  Occurrences inlines;  // how often each Inline that was read is met
  double shown = 0;     // nodes that a traversal meets
  RequestListener listener;
};

}  // namespace tessel::host
