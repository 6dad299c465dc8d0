// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <string_view>

#include "script/VsField.h"

namespace tessel::script {

/// A format as printf knows them, with script values in the places of its specifications. A specification that
/// printf would follow to values that are not there, or to any memory, adds nothing. A text that gets too long is
/// reported, and none.
std::string formatted(std::string_view format, Arguments arguments);

}  // namespace tessel::script
