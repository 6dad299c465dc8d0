// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

#include <Inventor/SbString.h>

class SoMFString;

namespace tessel {

/// How a class of nodes gets data from URLs: it asks the host, and opens nothing itself.
///
/// The host sets the callback of each such class before its first read, and answers every request later, on the
/// scene thread, with the node's own operation for the data or with its `fetchFailed`, which asks for the next
/// alternative if there is one. The callback comes in the middle of a traversal, a read or a notification: the
/// scene must not change inside it.
template <class Node> class TESSEL_API FetchConvention {
public:
  using FetchCallback = void(const SbString& url, void* data, Node* requestor);

  inline static FetchCallback* fetchURLcb = nullptr;  ///< without one nothing is ever asked for
  inline static void* fetchURLdata = nullptr;         ///< given to the callback
  inline static int fetchOnRead = 0;  ///< 1: ask as soon as the node is read; 0: when it is first needed

  static void setFetchURLCallBack(FetchCallback* callback, void* data) {
    fetchURLcb = callback;
    fetchURLdata = data;
  }
  static void setFetchOnRead(int flag) { fetchOnRead = flag; }
};

/// The alternative of that index, resolved against `base`; empty past the end.
TESSEL_API SbString fullURL(const SbString& base, const SoMFString& url, int index);

}  // namespace tessel
