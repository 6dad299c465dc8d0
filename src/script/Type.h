// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>

namespace tessel::script {

/// What a script value is. The order is part of the language: scalars first, last what is held by a field object,
/// with the elements of multiple values last, which hold the object of the whole and their place in it.
enum class Type : std::uint8_t {
  sfBool,
  sfInt32,
  sfFloat,
  sfTime,
  none,       ///< an expression that produced nothing
  undefined,  ///< a variable without a value
  sfString,
  sfNode,
  sfImage,
  sfVec2f,
  sfVec3f,
  sfRotation,
  sfColor,
  mfInt32,
  mfFloat,
  mfString,
  mfNode,
  mfVec2f,
  mfVec3f,
  mfColor,
  mfRotation,
  vec2fElement,
  vec3fElement,
  colorElement,
  rotationElement
};

constexpr bool isScalar(Type type) { return type <= Type::sfTime; }
constexpr bool isHeldByField(Type type) { return type >= Type::sfString; }
constexpr bool isElement(Type type) { return type >= Type::vec2fElement && type <= Type::rotationElement; }
constexpr bool isMultiple(Type type) { return type >= Type::mfInt32 && type <= Type::mfRotation; }
/// Vectors, rotations, colours and elements of multiples of these: they are copied, all others are shared.
constexpr bool isVector(Type type) {
  return (type >= Type::sfVec2f && type <= Type::sfColor) || isElement(type);
}
/// The type of a number that is made of two numbers: the later of theirs.
constexpr Type resultType(Type a, Type b) { return a < b ? b : a; }
/// The type of a single vector that an element stands for; any other type is its own.
constexpr Type wholeOf(Type type) {
  switch (type) {
    case Type::vec2fElement:
      return Type::sfVec2f;
    case Type::vec3fElement:
      return Type::sfVec3f;
    case Type::colorElement:
      return Type::sfColor;
    case Type::rotationElement:
      return Type::sfRotation;
    default:
      return type;
  }
}

}  // namespace tessel::script
