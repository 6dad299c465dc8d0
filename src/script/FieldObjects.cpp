// SPDX-License-Identifier: BSD-3-Clause
// The field objects by their types.
#include <algorithm>

#include "script/GlobalVar.h"
#include "script/VsField.h"
#include "script/VsMFields.h"
#include "script/VsSFColor.h"
#include "script/VsSFImage.h"
#include "script/VsSFNode.h"
#include "script/VsSFRotation.h"
#include "script/VsSFString.h"
#include "script/VsSFVec.h"

namespace tessel::script {
namespace {

struct Row {
  Type type;
  VsField* (*make)();
  VsField* (*makeOver)(SoField& field, bool keepsNode);
};

template <class Object> constexpr Row row() {
  return {Object::ofType, []() -> VsField* { return new Object; },
          [](SoField& field, bool keepsNode) -> VsField* {
            return new Object(static_cast<typename Object::Field&>(field), keepsNode);
          }};
}

constexpr Row rows[] = {
    // single values
    row<VsSFString>(),
    row<VsSFNode>(),
    row<VsSFImage>(),
    row<VsSFVec2f>(),
    row<VsSFVec3f>(),
    row<VsSFRotation>(),
    row<VsSFColor>(),
    // multiple values
    row<VsMFInt32>(),
    row<VsMFFloat>(),
    row<VsMFString>(),
    row<VsMFNode>(),
    row<VsMFVec2f>(),
    row<VsMFVec3f>(),
    row<VsMFColor>(),
    row<VsMFRotation>(),
};

const Row* rowOf(Type type) {
  const Row* found = std::ranges::find(rows, type, &Row::type);
  return found == std::end(rows) ? nullptr : found;
}

}  // namespace

Value newFieldObject(Type type) {
  const Row* row = rowOf(type);
  return row ? Value(type, row->make()) : Value();
}

Value fieldObjectOver(SoField& field, bool keepsNode) {
  const Row* row = rowOf(typeOf(field));
  return row ? Value(row->type, row->makeOver(field, keepsNode)) : Value();
}

void allocField(Value& result, Type type) {
  const bool isUsedAgain = result.type() == type && result.object()->isUnshared() &&
                           !result.object()->liveField() && result.object()->reset();
  if (!isUsedAgain) result = newFieldObject(type);
}

}  // namespace tessel::script
