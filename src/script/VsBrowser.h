// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "script/VsField.h"

namespace tessel::script {

/// The Browser object.
namespace VsBrowser {

/// A method of Browser, with as many arguments as it takes. Without a result, `result` stays as it is.
void evaluateMethod(Value& result, Method method, Arguments arguments);

}  // namespace VsBrowser
}  // namespace tessel::script
