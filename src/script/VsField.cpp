// SPDX-License-Identifier: BSD-3-Clause
#include "script/VsField.h"

#include <iterator>
#include <new>
#include <utility>

#include <Inventor/fields/SoField.h>
#include <Inventor/fields/SoFieldContainer.h>

#include "script/FieldRoom.h"

namespace tessel::script {
namespace {

// Room of one size that nobody uses. Never given back to the system: as much as there ever were objects at once,
// and at most so many pieces.
struct FreeRoom {
  struct Piece {
    Piece* next;
  };
  Piece* first = nullptr;
  int count = 0;
};
constexpr int mostPieces = 10000;
constexpr std::size_t grain = 16;
FreeRoom freeRooms[9];  // of 0, 16, ... 128 bytes

FreeRoom* freeRoomOf(std::size_t size) {
  const std::size_t i = (size + grain - 1) / grain;
  return i < std::size(freeRooms) ? &freeRooms[i] : nullptr;
}

}  // namespace

void* VsField::operator new(std::size_t size) {
  FreeRoom* room = freeRoomOf(size);
  if (!room) return ::operator new(size);
  if (!room->first) return ::operator new((size + grain - 1) / grain * grain);
  --room->count;
  return std::exchange(room->first, room->first->next);
}

void VsField::operator delete(void* room, std::size_t size) {
  FreeRoom* list = freeRoomOf(size);
  if (!list || list->count == mostPieces) return ::operator delete(room);
  ++list->count;
  list->first = new (room) FreeRoom::Piece{list->first};
}

VsField::VsField(SoField* field, bool keepsNode)
    : field(field), node(keepsNode ? field->getContainer() : nullptr) {
  if (node) node->ref();
}

VsField::~VsField() {
  if (node) node->unref();
}

Room& VsField::roomFor(Room& own, std::size_t bytes) const {
  return node ? FieldRoom::of(*field, own, bytes) : own;
}

}  // namespace tessel::script
