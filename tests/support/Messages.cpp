// SPDX-License-Identifier: BSD-3-Clause
#include "support/Messages.h"

#include <cstring>

#include <algorithm>

#include <Inventor/errors/SoDebugError.h>
#include <Inventor/errors/SoError.h>
#include <Inventor/errors/SoReadError.h>

namespace tessel::test {

Messages::Messages()
    : error{SoError::getHandlerCallback(), SoError::getHandlerData()},
      debugError{SoDebugError::getHandlerCallback(), SoDebugError::getHandlerData()},
      readError{SoReadError::getHandlerCallback(), SoReadError::getHandlerData()} {
  SoError::setHandlerCallback(hear, this);
  SoDebugError::setHandlerCallback(hear, this);
  SoReadError::setHandlerCallback(hear, this);
}

Messages::~Messages() {
  SoError::setHandlerCallback(error.call, error.data);
  SoDebugError::setHandlerCallback(debugError.call, debugError.data);
  SoReadError::setHandlerCallback(readError.call, readError.data);
}

void Messages::hear(const SoError* said, void* self) {
  // The toolkit asks GLX once a context, also where there is none; that is nobody's fault.
  if (std::strstr(said->getDebugString().getString(), "glxglue_isdirect")) return;
  static_cast<Messages*>(self)->heard.emplace_back(said->getDebugString().getString());
}

std::string Messages::text() const {
  std::string joined;
  for (const auto& message : heard) joined += (joined.empty() ? "" : "\n") + message;
  return joined;
}

int Messages::count(const std::string& part) const {
  return static_cast<int>(std::count_if(heard.begin(), heard.end(), [&](const std::string& message) {
    return message.find(part) != std::string::npos;
  }));
}

}  // namespace tessel::test
