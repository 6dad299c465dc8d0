// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "script/Names.h"

namespace tessel::script {

/// The Math object.
namespace JsMath {

/// A method of Math; `args` holds as many numbers as it takes.
double evaluateMethod(Method method, const double* args);
double evaluateProperty(Property property);

}  // namespace JsMath
}  // namespace tessel::script
