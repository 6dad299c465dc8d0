// SPDX-License-Identifier: BSD-3-Clause
#include "script/GlobalVar.h"

#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFFloat.h>
#include <Inventor/fields/SoSFInt32.h>
#include <Inventor/fields/SoSFTime.h>

#include <tessel/script/RuntimeErrors.h>

#include "core/Effort.h"
#include "core/ValueType.h"
#include "script/VsError.h"
#include "script/VsField.h"

namespace tessel::script {

Type typeOf(const SoField& field) {
  switch (valueTypeOf(field)) {
    case ValueType::sfBool:
      return Type::sfBool;
    case ValueType::sfColor:
      return Type::sfColor;
    case ValueType::sfFloat:
      return Type::sfFloat;
    case ValueType::sfImage:
      return Type::sfImage;
    case ValueType::sfInt32:
      return Type::sfInt32;
    case ValueType::sfNode:
      return Type::sfNode;
    case ValueType::sfRotation:
      return Type::sfRotation;
    case ValueType::sfString:
      return Type::sfString;
    case ValueType::sfTime:
      return Type::sfTime;
    case ValueType::sfVec2f:
      return Type::sfVec2f;
    case ValueType::sfVec3f:
      return Type::sfVec3f;
    case ValueType::mfColor:
      return Type::mfColor;
    case ValueType::mfFloat:
      return Type::mfFloat;
    case ValueType::mfInt32:
      return Type::mfInt32;
    case ValueType::mfNode:
    case ValueType::children:
      return Type::mfNode;
    case ValueType::mfRotation:
      return Type::mfRotation;
    case ValueType::mfString:
      return Type::mfString;
    case ValueType::mfVec2f:
      return Type::mfVec2f;
    case ValueType::mfVec3f:
      return Type::mfVec3f;
    default:
      return Type::undefined;
  }
}

void readScalar(const SoField& field, Type type, Value& result) {
  switch (type) {
    case Type::sfBool:
      return result.setBool(static_cast<const SoSFBool&>(field).getValue());
    case Type::sfInt32:
      return result.setInt(static_cast<const SoSFInt32&>(field).getValue());
    case Type::sfFloat:
      return result.setFloat(static_cast<const SoSFFloat&>(field).getValue());
    default:
      return result.setTime(static_cast<const SoSFTime&>(field).getValue().getValue());
  }
}

void writeScalar(SoField& field, Type type, const Value& scalar) {
  Effort::addChange();
  switch (type) {
    case Type::sfBool:
      return static_cast<SoSFBool&>(field).setValue(scalar.getBool());
    case Type::sfInt32:
      return static_cast<SoSFInt32&>(field).setValue(scalar.getInt());
    case Type::sfFloat:
      return static_cast<SoSFFloat&>(field).setValue(scalar.getFloat());
    default:
      return static_cast<SoSFTime&>(field).setValue(SbTime(scalar.getTime()));
  }
}

GlobalVar::GlobalVar(SoField& field, AccessType access) : field(&field), kind(typeOf(field)), access(access) {
  if (isScalar(kind) || kind == Type::undefined) return;
  held = fieldObjectOver(field, false);
  saved = held;
}

void GlobalVar::read(Value& result) const {
  if (isScalar(kind)) {
    readScalar(*field, kind, result);
  } else {
    result = held;
  }
}

void GlobalVar::setValue(const Value& newValue) {
  if (newValue.isNone() || newValue.type() == Type::undefined) return;
  if (access == AccessType::EVENTIN) return VsError::postRuntimeError("%s", RTE_EXPR_SET_EVENTIN);
  const bool fits = isScalar(kind) ? newValue.isScalar() : wholeOf(newValue.type()) == kind;
  if (!fits) return VsError::postRuntimeError("%s", RTE_EXPR_CHANGE_TYPE);
  if (isScalar(kind)) {
    writeScalar(*field, kind, newValue);
  } else if (isVector(kind)) {
    held.object()->setVecValue(newValue);
  } else {
    held = newValue;
  }
}

void GlobalVar::postExecute() {
  if (isScalar(kind) || held.object() == saved.object()) return;
  const Value assigned = held;
  held = saved;
  saved.object()->receive(assigned);
}

}  // namespace tessel::script
