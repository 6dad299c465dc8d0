// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <memory>
#include <span>

#include <Inventor/SoType.h>
#include <Inventor/misc/SoChildList.h>

class SoField;
class SoNotList;
class SoOneShotSensor;
class SoSensor;
class VrmlSFNode;

namespace tessel {

/// The child list of a node whose children are the values of its node fields.
///
/// A field that changed makes the list stale; it is brought in line at the end of the notification.
class SyncedChildren {
public:
  /// A field and the type that its node must have, or be a prototype of.
  struct Slot {
    VrmlSFNode* field;
    SoType type;
  };

  /// `slots` in the order of the children.
  SyncedChildren(SoNode* owner, std::initializer_list<Slot> slots);
  ~SyncedChildren();
  SyncedChildren(const SyncedChildren&) = delete;
  SyncedChildren& operator=(const SyncedChildren&) = delete;

  /// Whether each field holds nothing or a node of its type.
  bool fieldsAreSound() const;
  /// Whether a field of the node is one of the slots'.
  bool concerns(const SoField* field) const;

  /// What the owner's `notify` does: makes the list stale if a field got another value.
  /// False if the notification goes no further: the list changes itself, or the change lies inside a child
  /// and comes through the child list too.
  bool notify(const SoNotList* notification);
  bool isSyncing() const { return syncing; }
  void setStale() { stale = true; }
  /// Brings the list in line if it is stale. Nodes of the wrong type give way to NULL.
  void sync();

  SoChildList list;

private:
  static bool accepts(const Slot& slot);
  static void syncSensorCB(void* self, SoSensor* sensor);

  SoNode* owner;
  static constexpr int maxSlots = 3;
  Slot slots[maxSlots];
  int numSlots;
  bool stale = false;
  bool syncing = false;
  std::unique_ptr<SoOneShotSensor> syncSensor;  // made when it is first needed
};

}  // namespace tessel
