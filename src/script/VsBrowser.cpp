// SPDX-License-Identifier: BSD-3-Clause
#include "script/VsBrowser.h"

#include <tessel/script/RuntimeErrors.h>

#include "script/VsError.h"
#include "script/VsSFString.h"

namespace tessel::script {
namespace {

const char* nameOf(Method method) {
  switch (method) {
    case Method::getCurrentSpeed:
      return "getCurrentSpeed";
    case Method::getCurrentFrameRate:
      return "getCurrentFrameRate";
    case Method::getWorldURL:
      return "getWorldURL";
    case Method::replaceWorld:
      return "replaceWorld";
    case Method::createVrmlFromURL:
      return "createVrmlFromURL";
    case Method::loadURL:
      return "loadURL";
    default:
      return "setDescription";
  }
}

}  // namespace

void VsBrowser::evaluateMethod(Value& result, Method method, Arguments /*arguments*/) {
  switch (method) {
    case Method::getName:
      return VsSFString::setResult(result, SharedText("Tessel Viewer"));
    case Method::getVersion:
      return VsSFString::setResult(result, SharedText("Version 1.1"));
    default:
      VsError::postRuntimeError("%s %s() %s", RTE_BROWSER_OBJECT, nameOf(method),
                                RTE_BROWSER_NOT_IMPLEMENTED);
  }
}

}  // namespace tessel::script
