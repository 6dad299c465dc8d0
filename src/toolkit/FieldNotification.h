// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <Inventor/misc/SoNotification.h>

class SoNode;

namespace tessel {

/// Makes the notification of a node's own field reach everybody above.
///
/// The toolkit lets a notification pass each node once. One that comes to a field along a route therefore ends
/// at the first ancestor that the event's origin, or another route of it, has reached before, and who listens
/// further up hears of the origin alone. Where the field matters up there, its notification begins anew.
class FieldNotification {
public:
  /// For use in `notify` of `node`, with the list that came.
  FieldNotification(SoNode* node, SoNotList* came) : record(node), sent(came) {
    const SoNotRec* last = came->getLastRec();
    const bool ownField = last && last->getType() == SoNotRec::CONTAINER && came->getLastField();
    if (!ownField || came->getFirstRec()->getBase() == last->getBase()) return;
    fresh.append(&record, came->getLastField());
    fresh.setLastType(SoNotRec::CONTAINER);
    sent = &fresh;
  }
  FieldNotification(const FieldNotification&) = delete;
  FieldNotification& operator=(const FieldNotification&) = delete;

  /// The list to hand to the base class's `notify`.
  SoNotList* list() const { return sent; }

private:
  SoNotRec record;
  SoNotList fresh;
  SoNotList* sent;
};

}  // namespace tessel
