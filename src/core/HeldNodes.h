// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <Inventor/fields/SoField.h>

class SoNotList;
class SoNotRec;

namespace tessel {

/// Whether a field that may hold nodes was notified by one of them, in which something has changed, and got no value
/// of its own.
/// @param before  the record before that of the field; null if the notification began with the field
bool isFromHeldNode(const SoField& field, const SoNotRec* before);

/// Whether such a notification ends at the field, since its node does not heed it. Where nodes stand in the scene too
/// it comes up from there, as what it is: it passes each node but once, and each instance that it came up to by both
/// ways would double it.
bool endsAtField(const SoField& field, const SoNotList& list);

}  // namespace tessel
