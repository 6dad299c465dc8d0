// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <vector>

#include <Inventor/nodes/SoNode.h>

#include "core/ValueType.h"

class SoMFNode;
class VrmlNode;

namespace tessel {

/// The copying of nodes with all that hangs from their fields. What is shared among them stays shared among the
/// copies. The copies are known by their originals for as long as the object lives; such objects may be nested.
///
/// It keeps its own table, since the toolkit's costs more than the copying of a few nodes. Where an engine (a fan-in), or a
/// node of the toolkit's own is met, the toolkit's table takes over.
class [[nodiscard]] DeepCopy {
public:
  explicit DeepCopy(bool withConnections);
  ~DeepCopy();
  DeepCopy(const DeepCopy&) = delete;
  DeepCopy& operator=(const DeepCopy&) = delete;

  /// The innermost one, null if none is under way.
  static DeepCopy* current() { return running; }

  /// Makes the copies of a node and of what hangs from it, still empty. All are to be added before the first is asked
  /// for.
  void add(const SoNode& node);
  /// The copy of a node, with its contents; null if it was not copied. It dies with the object unless it is referenced.
  SoNode* of(const SoNode* node) { return static_cast<SoNode*>(filled(node)); }

  // For the nodes and engines that are copied; outside of a DeepCopy, by the toolkit.
  static void addBelow(const SoNode& node);
  static SoFieldContainer* checkCopy(const SoFieldContainer* original);
  static SoFieldContainer* findCopy(const SoFieldContainer* original, bool withConnections);
  /// Makes a copy known. One that is `whole` has its contents, or gets them from whoever calls.
  static void enter(const SoFieldContainer* original, SoFieldContainer* copy, bool whole);
  /// In the place of nodes that were copied, puts the copies.
  static void fixNodes(SoMFNode& field, bool withConnections);

  /// Adds the nodes that the fields of a node hold.
  void addFields(const SoNode& node);
  /// Gives `copy` the values and connections of the fields of `original`, but for its children. What has its default in
  /// both is passed over.
  void copyFields(const VrmlNode& original, VrmlNode& copy);

private:
  struct Entry {
    const SoFieldContainer* original = nullptr;
    SoFieldContainer* copy = nullptr;
    bool isFilled = false;
  };

  Entry& slotOf(const SoFieldContainer* original);
  void grow();
  SoFieldContainer* known(const SoFieldContainer* original);
  SoFieldContainer* filled(const SoFieldContainer* original);
  void watchConnection(const SoField& field);
  void copyField(const VrmlNode& original, const SoField& from, SoField& to, ValueType type);
  void useToolkitTable();

  inline static DeepCopy* running = nullptr;

  DeepCopy* const outer;
  const bool connections;
  const int nodesWereFixed;
  bool toolkitKnows = false;
  std::size_t count = 0;
  std::vector<Entry> table;  // open addressing; a power of two, at most half of it in use
};

}  // namespace tessel
