// SPDX-License-Identifier: BSD-3-Clause
#include "Network.h"

#include <algorithm>
#include <deque>
#include <list>
#include <map>
#include <memory>

#include <curl/curl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <tessel/version.h>

#include "Url.h"

namespace tessel::host {
namespace {

constexpr long connectTime = 10'000;  // milliseconds
constexpr int idleWait = 1'000;       // likewise; whoever has something to do wakes the thread

struct CloseEasy {
  void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};

enum class Server { unknown, alive, dead };

/// One file on its way.
struct Transfer {
  Network::Answer answer;
  std::string server;
  std::map<std::string, Server>* servers = nullptr;
  std::uint64_t room = 0;  // bytes that may still come
  bool tooLarge = false;
  int file = -1;
  std::unique_ptr<CURL, CloseEasy> easy;

  Transfer() = default;
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;
  ~Transfer() {
    if (file >= 0) close(file);
  }
};

std::size_t takeHeader(char*, std::size_t size, std::size_t count, void* self) {
  auto& transfer = *static_cast<Transfer*>(self);
  (*transfer.servers)[transfer.server] = Server::alive;
  return size * count;
}

std::size_t takeBytes(char* bytes, std::size_t size, std::size_t count, void* self) {
  auto& transfer = *static_cast<Transfer*>(self);
  const std::size_t all = size * count;
  transfer.tooLarge = all > transfer.room;
  if (transfer.tooLarge) return 0;
  transfer.room -= all;
  for (std::size_t done = 0; done < all;) {
    const ssize_t written = write(transfer.file, bytes + done, all - done);
    if (written <= 0) return 0;
    done += static_cast<std::size_t>(written);
  }
  return all;
}

std::string failureOf(const Transfer& transfer, CURLcode result, const NetworkLimits& limits) {
  long status = 0;
  switch (result) {
    case CURLE_OK:
      return {};
    case CURLE_HTTP_RETURNED_ERROR:
      curl_easy_getinfo(transfer.easy.get(), CURLINFO_RESPONSE_CODE, &status);
      return "the server answers " + std::to_string(status);
    case CURLE_TOO_MANY_REDIRECTS:
      return "more than " + std::to_string(limits.redirects) + " redirects";
    case CURLE_PARTIAL_FILE:
      return "the transfer was cut off";
    case CURLE_OPERATION_TIMEDOUT:
      return "it took too long";
    case CURLE_FILESIZE_EXCEEDED:
      return "it is larger than " + std::to_string(limits.bytes) + " bytes";
    default:
      if (transfer.tooLarge) return failureOf(transfer, CURLE_FILESIZE_EXCEEDED, limits);
      return curl_easy_strerror(result);
  }
}

bool isUnreachable(CURLcode result) {
  return result == CURLE_COULDNT_RESOLVE_HOST || result == CURLE_COULDNT_CONNECT ||
         result == CURLE_OPERATION_TIMEDOUT;
}

void startCurl() {
  static const CURLcode started = curl_global_init(CURL_GLOBAL_DEFAULT);
  static_cast<void>(started);
}

}  // namespace

/// All that the thread of the network alone knows.
class Network::Transfers {
public:
  explicit Transfers(Network& n) : network(n), multi(n.multi) {}
  ~Transfers() { dropAll(); }

  void add(Order order) { waiting.push_back(std::move(order)); }
  void dropAll() {
    waiting.clear();
    servers.clear();
    for (const auto& transfer : active) curl_multi_remove_handle(multi, transfer->easy.get());
    active.clear();
  }
  void work() {
    startWhatMay();
    int running = 0;
    curl_multi_perform(multi, &running);
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(multi, &left))
      if (message->msg == CURLMSG_DONE) end(message->easy_handle, message->data.result);
    startWhatMay();
  }

private:
  void startWhatMay() {
    for (auto at = waiting.begin(); at != waiting.end();) {
      const std::string server(serverOf(at->url));
      const Server state = servers[server];
      if (state == Server::dead) {
        network.finish({at->url, {}, {}, "its server could not be reached before", at->world});
      } else {
        const bool full = static_cast<int>(active.size()) >= network.limits.atOnce;
        const bool mustWait =
            state == Server::unknown &&
            std::ranges::any_of(active, [&](const auto& transfer) { return transfer->server == server; });
        if (full || mustWait) {
          ++at;
          continue;
        }
        start(*at, server);
      }
      at = waiting.erase(at);
    }
  }

  void start(const Order& order, const std::string& server) {
    auto transfer = std::make_unique<Transfer>();
    transfer->answer.url = order.url;
    transfer->answer.world = order.world;
    transfer->server = server;
    transfer->servers = &servers;
    transfer->room = network.limits.bytes;
    transfer->file = network.folder.newFile(transfer->answer.file);
    transfer->easy.reset(curl_easy_init());
    CURL* easy = transfer->easy.get();
    if (transfer->file < 0 || !easy) {
      transfer->answer.failure =
          network.folder.failure().empty() ? "no temporary file" : network.folder.failure();
      network.finish(std::move(transfer->answer));
      return;
    }
    curl_easy_setopt(easy, CURLOPT_URL, order.url.c_str());
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(easy, CURLOPT_MAXREDIRS, static_cast<long>(network.limits.redirects));
    curl_easy_setopt(easy, CURLOPT_FAILONERROR, 1L);
    curl_easy_setopt(easy, CURLOPT_ACCEPT_ENCODING, "");
    curl_easy_setopt(easy, CURLOPT_TIMEOUT_MS, static_cast<long>(network.limits.time.count()));
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT_MS, connectTime);
    curl_easy_setopt(easy, CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(network.limits.bytes));
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy, CURLOPT_QUICK_EXIT, 1L);  // no wait for a name that is still looked up
    curl_easy_setopt(easy, CURLOPT_USERAGENT, (std::string("tessel/") + version()).c_str());
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, takeHeader);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, transfer.get());
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, takeBytes);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, transfer.get());
    curl_multi_add_handle(multi, easy);
    active.push_back(std::move(transfer));
  }

  void end(CURL* easy, CURLcode result) {
    const auto at =
        std::ranges::find_if(active, [&](const auto& transfer) { return transfer->easy.get() == easy; });
    Transfer& transfer = **at;
    char* url = nullptr;
    curl_easy_getinfo(easy, CURLINFO_EFFECTIVE_URL, &url);
    transfer.answer.finalUrl = url ? url : transfer.answer.url;
    if (isUnreachable(result)) {
      Server& state = servers[std::string(serverOf(transfer.answer.finalUrl))];
      if (state == Server::unknown) state = Server::dead;
    }
    transfer.answer.failure = failureOf(transfer, result, network.limits);
    curl_multi_remove_handle(multi, easy);
    network.finish(std::move(transfer.answer));
    active.erase(at);
  }

  Network& network;
  CURLM* multi;
  std::deque<Order> waiting;
  std::list<std::unique_ptr<Transfer>> active;
  std::map<std::string, Server> servers;
};

Network::Network(const NetworkLimits& l) : limits(l), event(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  startCurl();
  multi = curl_multi_init();
  thread = std::thread(&Network::run, this);
}

Network::~Network() {
  ending = true;
  curl_multi_wakeup(multi);
  thread.join();
  curl_multi_cleanup(multi);
  close(event);
}

void Network::run() {
  Transfers transfers(*this);
  std::uint64_t current = 0;
  std::vector<Order> fresh;
  while (!ending) {
    {
      const std::lock_guard held(lock);
      fresh.swap(orders);
    }
    // Behind the swap, so that no order is of a later world than this.
    if (const std::uint64_t now = world; now != current) {
      current = now;
      transfers.dropAll();
    }
    for (Order& order : fresh)
      if (order.world == current) transfers.add(std::move(order));
    fresh.clear();
    transfers.work();
    curl_multi_poll(multi, nullptr, 0, idleWait, nullptr);
  }
}

void Network::finish(Answer answer) {
  {
    const std::lock_guard held(lock);
    answers.push_back(std::move(answer));
  }
  eventfd_write(event, 1);
}

void Network::ask(const std::string& url) {
  {
    const std::lock_guard held(lock);
    orders.push_back({url, world});
  }
  curl_multi_wakeup(multi);
}

std::vector<Network::Answer> Network::take() {
  std::vector<Answer> taken;
  eventfd_t count = 0;
  if (eventfd_read(event, &count) != 0) return taken;  // nothing has come: no lock
  {
    const std::lock_guard held(lock);
    taken.swap(answers);
  }
  std::erase_if(taken, [this](const Answer& answer) { return answer.world != world; });
  return taken;
}

void Network::wait(std::chrono::milliseconds longest) const {
  pollfd readable{event, POLLIN, 0};
  poll(&readable, 1, static_cast<int>(std::max<std::int64_t>(longest.count(), 0)));
}

bool Network::hasAnswers() const {
  pollfd readable{event, POLLIN, 0};
  return poll(&readable, 1, 0) > 0;
}

void Network::forget() {
  ++world;
  curl_multi_wakeup(multi);
}

}  // namespace tessel::host
