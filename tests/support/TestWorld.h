// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/VrmlDB.h>
#include <tessel/toolkit/SoRef.h>

#include <filesystem>
#include <string>
#include <string_view>

#include <Inventor/SoType.h>
#include <Inventor/nodes/SoNode.h>

#include "support/Messages.h"

namespace tessel::test {

/// Starts the toolkit and the library, once for the program. Every other thing here does so by itself.
void startLibrary();

/// A world read from text, and all that is reported while it lives.
///
///     TestWorld world("DEF BOX Transform { translation 1 2 3 }");
///     ASSERT_EQ(world.status, tessel::ReadStatus::world) << world.messages.text();
///     auto* box = world.get<VrmlTransform>("BOX");
class TestWorld {
  struct Started {
    Started() { startLibrary(); }
  } started;

public:
  /// Reads `text` under the name "test.wrl". Unless it begins with a `#` the header is put before it, as line 1, so
  /// that messages count the first line of `text` as line 2.
  explicit TestWorld(std::string_view text, const tessel::ReadOptions& options = {});
  /// Reads a file, such as `TestWorld(testFile("core/worlds/fan-in.wrl"))`.
  explicit TestWorld(const std::filesystem::path& file, const tessel::ReadOptions& options = {});
  explicit TestWorld(const char* text) : TestWorld(std::string_view(text)) {}
  explicit TestWorld(const std::string& text) : TestWorld(std::string_view(text)) {}

  /// What was read; null if nothing was.
  SoNode* root() const { return node.get(); }

  /// The node of that DEF name if it is a T, else null.
  template <class T> T* get(const char* name) const {
    SoNode* found = named(name);
    return found && found->isOfType(T::getClassTypeId()) ? static_cast<T*>(found) : nullptr;
  }

  Messages messages;
  tessel::ReadStatus status;

private:
  static SoNode* named(const char* name);

  SoRef<SoNode> node;
};

}  // namespace tessel::test
