// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
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

  const Declared* named(const SbName& name) const { return at(byName.find(name.getString())); }
  const Declared* of(const SoField* field) const { return at(byAddress.find(field)); }

  std::size_t size() const { return list.size(); }
  auto begin() const { return list.begin(); }
  auto end() const { return list.end(); }

private:
  // Finds numbers by addresses. The toolkit keeps each name once, so that a name has an address too.
  class Numbers {
  public:
    void add(const void* address, int number);
    int find(const void* address) const;
    void clear() { sorted.clear(); }

  private:
    std::vector<std::pair<const void*, int>> sorted;
  };

  const Declared* at(int number) const {
    return number < 0 ? nullptr : &list[static_cast<std::size_t>(number)];
  }
  const Declared& enter(Declared declared);

  SoFieldContainer& node;
  const SoFieldData& ofClass;
  std::unique_ptr<SoFieldData> all;
  std::vector<Declared> list;
  Numbers byName, byAddress;
};

}  // namespace tessel::script
