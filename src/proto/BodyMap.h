// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <span>
#include <vector>

class VrmlNode;

namespace tessel {

/// An IS clause, with the field of the body told by numbers that hold in every copy.
struct BodyMapEntry {
  int index;        // of the interface field
  int node;         // in `nodes`
  int fieldIndex;   // on that node, as it is declared if that is an instance of an external prototype
  bool isInstance;  // the node is an instance of a prototype
};

/// The IS clauses of a definition, as its instances need them: by interface field.
struct BodyMap {
  using Entry = BodyMapEntry;

  std::vector<const VrmlNode*> nodes;  // those of the body that have fields with IS
  std::vector<Entry> entries;          // ordered by `index`
  std::vector<int> first;              // for each interface field, and one more: its first entry
  bool nodesHeldWeakly = false;        // no node in an interface field is traversed under an instance

  std::span<const Entry> of(int index) const {
    const auto i = static_cast<std::size_t>(index);
    return std::span(entries).subspan(static_cast<std::size_t>(first[i]),
                                      static_cast<std::size_t>(first[i + 1] - first[i]));
  }
};

}  // namespace tessel
