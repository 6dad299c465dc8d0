// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include <Inventor/SoType.h>

namespace tessel {

/// The map from the names of nodes in a file to our classes, filled when the classes are registered.
///
/// No text from a file ever reaches SoType::fromName, which would search the disk for a library of that
/// name. The toolkit's own classes are known by name from one enumeration at start-up, only to say of a
/// node in a file that it does not belong there.
class TypeNames {
public:
  /// What a word in the place of a node's type name is.
  enum class Meaning { unknown, node, abstractNode, foreignNode, abstractForeign, notANode };

  struct Entry {
    Meaning meaning = Meaning::unknown;
    SoType type;
  };

  /// Enters one of our classes; whether it is abstract is asked of the type.
  void add(std::string_view fileFormatName, SoType type);
  /// Enters every node, engine and field class that the toolkit knows at this moment under a free name.
  void addForeignTypes();
  /// What a name means, `unknown` if nothing was entered.
  Entry find(std::string_view name) const;

private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view s) const noexcept { return std::hash<std::string_view>{}(s); }
  };
  std::unordered_map<std::string, Entry, Hash, std::equal_to<>> entries;
};

/// The one map of the process.
TypeNames& typeNames();

}  // namespace tessel
