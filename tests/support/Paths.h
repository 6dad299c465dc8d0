// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <filesystem>
#include <string_view>

namespace tessel::test {

/// The path of a file below tests/, such as `testFile("core/worlds/fan-in.wrl")`.
std::filesystem::path testFile(std::string_view name);

/// The path of a file below the project's root, such as `projectFile("examples/worlds/showcase.wrl")`.
std::filesystem::path projectFile(std::string_view name);

/// The path of a program of this build, such as `builtProgram("tessel")`; it may not be there.
std::filesystem::path builtProgram(std::string_view name);

/// A folder of its own for the running test, empty at the first call in it; what a failed test left there can be
/// looked at afterwards. Tests run side by side, so no test writes anywhere else.
const std::filesystem::path& scratchDir();

}  // namespace tessel::test
