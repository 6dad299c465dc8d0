// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <functional>
#include <memory>
#include <string>

#include <tessel/core/VrmlNode.h>
#include <tessel/toolkit/SoRef.h>

class VrmlInline;

namespace tessel::host {

/// What a node asked for, until it is answered.
class Request {
public:
  /// @param wanted  the URL, resolved
  /// @param asker   where it is asked for, for messages; null if nobody is known
  Request(std::string wanted, std::string baseUrl, const VrmlNode* asker);
  virtual ~Request() = default;
  Request(const Request&) = delete;
  Request& operator=(const Request&) = delete;

  const std::string url;
  const std::string base;  ///< of the node, which says from which file it is
  const int line;          ///< of the node's DEF, 0 for none

  /// Whether anybody but the request itself still knows who asks.
  virtual bool isWanted() const = 0;
  /// Answers that there is nothing: the node asks for its next alternative, if it has one.
  virtual void fail() = 0;
};

/// An Inline asks for a world, or an EXTERNPROTO for prototypes.
class WorldRequest final : public Request {
public:
  WorldRequest(std::string wanted, VrmlInline* inlineNode);
  const SoRef<VrmlInline> node;
  const bool forPrototypes;  ///< many files may ask for one reading
  bool isWanted() const override;
  void fail() override;
  /// Whether there is no URL because the alternative means the file itself.
  bool meansItself() const;
};

/// A node asks for a file that it reads by itself.
class FileRequest : public Request {
public:
  using Request::Request;
  /// Answers with a file of this disk. What is wrong with its contents is between the node and the library.
  virtual void give(const char* path) = 0;
};

/// Makes requests of what all classes of nodes that fetch ask for, while it lives. There is one at a time.
class RequestListener {
public:
  /// `sink` is called in the middle of whatever the library does, and must change nothing there.
  using Sink = std::function<void(std::unique_ptr<Request>)>;
  explicit RequestListener(Sink sink);
  ~RequestListener();
  RequestListener(const RequestListener&) = delete;
  RequestListener& operator=(const RequestListener&) = delete;

private:
  Sink sink;
};

}  // namespace tessel::host
