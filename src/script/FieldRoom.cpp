// SPDX-License-Identifier: BSD-3-Clause
#include "script/FieldRoom.h"

#include <unordered_map>

#include <Inventor/fields/SoField.h>

namespace tessel::script {

Room& FieldRoom::of(SoField& field, Room& passing, std::size_t bytes) {
  constexpr std::size_t little = 4096;
  // Never destroyed: fields may outlive static objects.
  static auto& rooms = *new std::unordered_map<const SoField*, FieldRoom>;
  const auto known = rooms.find(&field);
  if (known != rooms.end() && known->second.getAttachedField()) return known->second.room;
  if (bytes <= little) return passing;
  if (unused > rooms.size() / 2) {
    std::erase_if(rooms, [](const auto& one) { return !one.second.getAttachedField(); });
    unused = 0;
  }
  FieldRoom& made = rooms[&field];
  made.attach(&field);
  made.room.take(passing.size());
  passing.take(0);
  return made.room;
}

void FieldRoom::dyingReference() {
  detach();
  room.take(0);
  ++unused;
}

}  // namespace tessel::script
