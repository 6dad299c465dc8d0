// SPDX-License-Identifier: BSD-3-Clause
// Files over the network, from a server of the test's own: good ones whole, bad ones with a reason, none too often.
#include "host/fetch/Network.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "HttpServer.h"

namespace tessel::host {
namespace {

using namespace std::chrono_literals;
using Reply = HttpServer::Reply;

std::string contentOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

/// Asks for all and waits for all answers, ten seconds at most. In the order of asking.
std::vector<Network::Answer> get(Network& network, const std::vector<std::string>& urls) {
  for (const std::string& url : urls) network.ask(url);
  std::vector<Network::Answer> all(urls.size());
  std::size_t come = 0;
  for (const auto end = std::chrono::steady_clock::now() + 10s; come < urls.size();) {
    if (std::chrono::steady_clock::now() > end) {
      ADD_FAILURE() << "only " << come << " of " << urls.size() << " came";
      break;
    }
    network.wait(100ms);
    for (Network::Answer& answer : network.take()) {
      const auto at = std::find(urls.begin(), urls.end(), answer.url) - urls.begin();
      all[static_cast<std::size_t>(at)] = std::move(answer);
      ++come;
    }
  }
  return all;
}

Network::Answer get(Network& network, const std::string& url) { return get(network, std::vector{url})[0]; }

TEST(Network, GivesWhatTheServerHasUnpacked) {
  const std::string text(100'000, 'x');
  HttpServer server({{"/a", {.body = text}},
                     {"/packed", {.body = gzipped(text), .headers = "Content-Encoding: gzip\r\n"}},
                     {"/far", {.headers = "Location: /dir/a\r\n", .status = "302 Found"}},
                     {"/dir/a", {.body = text, .claimed = -2}}});
  Network network;
  const auto answers = get(network, {server.url("/a"), server.url("/packed"), server.url("/far")});
  for (const Network::Answer& answer : answers) {
    EXPECT_EQ(answer.failure, "") << answer.url;
    EXPECT_TRUE(contentOf(answer.file) == text) << answer.url;
  }
  EXPECT_EQ(answers[2].finalUrl, server.url("/dir/a"));
}

TEST(Network, SaysWhyThereIsNothing) {
  HttpServer server(
      {{"/loop", {.headers = "Location: /loop\r\n", .status = "302 Found"}},
       {"/file", {.headers = "Location: file:///etc/passwd\r\n", .status = "302 Found"}},
       {"/cut", {.body = "half", .claimed = 100}},
       {"/huge", {.body = std::string(2000, 'x')}},
       {"/sly", {.body = std::string(2000, 'x'), .claimed = -2}},
       {"/bomb", {.body = gzipped(std::string(5000, 'x')), .headers = "Content-Encoding: gzip\r\n"}},
       {"/slow", {.body = "late", .delay = 5s}}});
  Network network({.bytes = 1000, .time = 400ms});
  const std::pair<const char*, const char*> expected[] = {
      {"/none", "the server answers 404"},       {"/loop", "more than 5 redirects"},
      {"/file", "Unsupported protocol"},         {"/cut", "the transfer was cut off"},
      {"/huge", "it is larger than 1000 bytes"}, {"/sly", "it is larger than 1000 bytes"},
      {"/bomb", "it is larger than 1000 bytes"}, {"/slow", "it took too long"},
  };
  std::vector<std::string> urls;
  for (const auto& [path, failure] : expected) urls.push_back(server.url(path));
  const auto answers = get(network, urls);
  for (std::size_t i = 0; i < urls.size(); ++i) EXPECT_EQ(answers[i].failure, expected[i].second) << urls[i];
  EXPECT_EQ(server.count("/loop"), 6) << "the first time and five redirects";
}

TEST(Network, AsksADeadServerOnce) {
  const std::string dead = "http://127.0.0.1:" + std::to_string(deafPort());
  Network network;
  const auto answers = get(network, {dead + "/a", dead + "/b", dead + "/c"});
  EXPECT_EQ(answers[0].failure, "Couldn't connect to server");
  EXPECT_EQ(answers[1].failure, "its server could not be reached before");
  EXPECT_EQ(answers[2].failure, "its server could not be reached before");
}

TEST(Network, HasEightOnTheirWayAtOnce) {
  std::map<std::string, Reply> replies;
  for (int i = 0; i < 30; ++i)
    replies[std::string("/").append(std::to_string(i))] = {.body = "x", .delay = 250ms};
  HttpServer server(replies);
  Network network;
  std::vector<std::string> urls;
  for (const auto& [path, reply] : replies) urls.push_back(server.url(path));
  for (const Network::Answer& answer : get(network, urls)) EXPECT_EQ(answer.failure, "");
  EXPECT_EQ(server.mostAtOnce(), 8);
}

TEST(Network, ForgetsWhatNobodyWaitsFor) {
  HttpServer server({{"/slow", {.body = "old", .delay = 5s}}, {"/new", {.body = "new"}}});
  const auto start = std::chrono::steady_clock::now();
  {
    Network network;
    network.ask(server.url("/slow"));
    std::this_thread::sleep_for(50ms);
    network.forget();
    EXPECT_EQ(contentOf(get(network, server.url("/new")).file), "new");
    network.ask(server.url("/slow"));
  }
  EXPECT_LT(std::chrono::steady_clock::now() - start, 4s) << "nobody waits for the end of a transfer";
}

}  // namespace
}  // namespace tessel::host
