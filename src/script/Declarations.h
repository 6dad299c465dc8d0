// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include <Inventor/SbName.h>
#include <Inventor/fields/SoField.h>
#include <Inventor/fields/SoFieldData.h>

#include <tessel/core/FieldKind.h>

#include "core/ValueType.h"

class SoFieldContainer;

namespace tessel::script {

/// The fields and events that a Script declares, in file order. It owns them, and finds them by name and by address.
class Declarations {
public:
  struct Declared {
    SbName name;
    FieldKind kind;  ///< internal if the name was taken
    std::unique_ptr<SoField> field;
    int index;  ///< among all fields of the node; -1 if the name was taken
  };

  /// Behind the fields that the node's class has, which live as long as the process.
  Declarations(SoFieldContainer& node, const SoFieldData& ofClass);

  /// All fields of the node. The toolkit asks for it.
  const SoFieldData* table() const { return all.get(); }

  /// Makes one with the neutral value of its type. Under a name that the node has already it is nobody's business but
  /// the node's.
  const Declared& add(FieldKind kind, ValueType type, const SbName& name);
  /// False if there is none of that name.
  bool remove(const SbName& name);

  const Declared* named(const SbName& name) const {
    const auto* found = byName.find(name.getString());
    return found ? &(*this)[found->second] : nullptr;
  }

  /// What an event needs to know of its field.
  struct Known {
    FieldKind kind;
    ValueType type;
    int index;   ///< among all fields of the node; -1 if the name was taken
    int number;  ///< in file order
  };
  /// Null for a field that is not declared.
  const Known* of(const SoField* field) const {
    const auto* found = byAddress.find(field);
    return found ? &found->second : nullptr;
  }

  const Declared& operator[](int number) const { return list[static_cast<std::size_t>(number)]; }
  std::size_t size() const { return list.size(); }
  auto begin() const { return list.begin(); }
  auto end() const { return list.end(); }

private:
  // Finds things by addresses. The toolkit keeps each name once, so that a name has an address too.
  template <class Thing> class ByAddress {
  public:
    using Entry = std::pair<const void*, Thing>;
    void add(const void* address, const Thing& thing) {
      sorted.insert(std::lower_bound(sorted.begin(), sorted.end(), address, isBefore), {address, thing});
    }
    const Entry* find(const void* address) const {
      const auto found = std::lower_bound(sorted.begin(), sorted.end(), address, isBefore);
      return found == sorted.end() || found->first != address ? nullptr : &*found;
    }
    void clear() { sorted.clear(); }

  private:
    static bool isBefore(const Entry& one, const void* address) { return std::less<>()(one.first, address); }
    std::vector<Entry> sorted;
  };

  const Declared& enter(Declared declared);

  SoFieldContainer& node;
  const SoFieldData& ofClass;
  std::unique_ptr<SoFieldData> all;
  ByAddress<Known> byAddress;
  ByAddress<int> byName;
  std::vector<Declared> list;  // goes before the table does
};

}  // namespace tessel::script
