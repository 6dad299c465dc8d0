// SPDX-License-Identifier: BSD-3-Clause
#include "HttpServer.h"

#include <algorithm>
#include <stdexcept>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <zlib.h>

namespace tessel::host {
namespace {

/// A socket bound to a free port of the loopback.
int boundSocket(int& port) {
  const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* plain = reinterpret_cast<sockaddr*>(&address);
  if (socket < 0 || bind(socket, plain, size) != 0 || getsockname(socket, plain, &size) != 0)
    throw std::runtime_error("no socket on the loopback");
  port = ntohs(address.sin_port);
  return socket;
}

void sendAll(int connection, const std::string& text) {
  for (std::size_t done = 0; done < text.size();) {
    const ssize_t sent = send(connection, text.data() + done, text.size() - done, MSG_NOSIGNAL);
    if (sent <= 0) return;
    done += static_cast<std::size_t>(sent);
  }
}

}  // namespace

HttpServer::HttpServer(std::map<std::string, Reply> r) : replies(std::move(r)), listener(boundSocket(port)) {
  if (listen(listener, 64) != 0) throw std::runtime_error("can't listen on the loopback");
  thread = std::thread(&HttpServer::run, this);
}

HttpServer::~HttpServer() {
  ending = true;
  thread.join();
  close(listener);
}

std::string HttpServer::url(const std::string& path) const {
  return "http://127.0.0.1:" + std::to_string(port) + path;
}

int HttpServer::count(const std::string& path) const {
  const std::lock_guard held(lock);
  const auto found = counts.find(path);
  return found == counts.end() ? 0 : found->second;
}

void HttpServer::run() {
  while (!ending) {
    pollfd waiting{listener, POLLIN, 0};
    if (poll(&waiting, 1, 20) <= 0) continue;
    const int connection = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (connection >= 0) connections.emplace_back(&HttpServer::serve, this, connection);
  }
  for (std::thread& connection : connections) connection.join();
}

void HttpServer::serve(int connection) {
  const int now = ++busy;
  for (int seen = most; seen < now && !most.compare_exchange_weak(seen, now);) continue;

  std::string request;
  char part[1024];
  while (request.find("\r\n\r\n") == std::string::npos) {
    const ssize_t got = recv(connection, part, sizeof part, 0);
    if (got <= 0) break;
    request.append(part, static_cast<std::size_t>(got));
  }
  const std::size_t start = std::min(request.find(' '), request.size() - 1) + 1;
  const std::string path = request.substr(start, request.find(' ', start) - start);
  {
    const std::lock_guard held(lock);
    ++counts[path];
  }
  const auto found = replies.find(path);
  const Reply reply = found == replies.end() ? Reply{.status = "404 Not Found"} : found->second;
  for (auto left = reply.delay; left.count() > 0 && !ending; left -= std::chrono::milliseconds(10))
    std::this_thread::sleep_for(std::min(left, std::chrono::milliseconds(10)));
  const long length = reply.claimed == -1 ? static_cast<long>(reply.body.size()) : reply.claimed;
  std::string answer = "HTTP/1.1 " + reply.status + "\r\nConnection: close\r\n" + reply.headers;
  if (length >= 0) answer += "Content-Length: " + std::to_string(length) + "\r\n";
  --busy;  // before the other side knows that it may ask for the next
  sendAll(connection, answer + "\r\n" + reply.body);
  shutdown(connection, SHUT_WR);
  close(connection);
}

std::string gzipped(const std::string& text) {
  z_stream stream{};
  deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY);
  std::string out(deflateBound(&stream, text.size()) + 32, '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  stream.avail_in = static_cast<uInt>(text.size());
  stream.next_out = reinterpret_cast<Bytef*>(out.data());
  stream.avail_out = static_cast<uInt>(out.size());
  deflate(&stream, Z_FINISH);
  out.resize(stream.total_out);
  deflateEnd(&stream);
  return out;
}

int deafPort() {
  int port = 0;
  close(boundSocket(port));
  return port;
}

}  // namespace tessel::host
