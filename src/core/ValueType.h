// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include <Inventor/fields/SoFields.h>

#include <tessel/core/VrmlMFChildren.h>
#include <tessel/core/VrmlMFNode.h>
#include <tessel/core/VrmlSFNode.h>

namespace tessel {

/// The types of field values that the file format knows; `children` is spelled MFNode in a file. No file
/// declares fields of the types sfEnum, which a class of ours has, and sfMatrix.
enum class ValueType : std::uint8_t {
  sfBool,
  sfColor,
  sfEnum,
  sfFloat,
  sfImage,
  sfInt32,
  sfMatrix,
  sfNode,
  sfRotation,
  sfString,
  sfTime,
  sfVec2f,
  sfVec3f,
  mfColor,
  mfFloat,
  mfInt32,
  mfNode,
  mfRotation,
  mfString,
  mfTime,
  mfVec2f,
  mfVec3f,
  children,
  count
};

/// The value type that a field class holds: `ValueTypeOf<SoSFVec3f>::value` is `ValueType::sfVec3f`.
template <class Field, ValueType type> struct HoldsValue { static constexpr ValueType value = type; };
template <class Field> struct ValueTypeOf;
template <> struct ValueTypeOf<SoSFBool> : HoldsValue<SoSFBool, ValueType::sfBool> {};
template <> struct ValueTypeOf<SoSFColor> : HoldsValue<SoSFColor, ValueType::sfColor> {};
template <> struct ValueTypeOf<SoSFEnum> : HoldsValue<SoSFEnum, ValueType::sfEnum> {};
template <> struct ValueTypeOf<SoSFFloat> : HoldsValue<SoSFFloat, ValueType::sfFloat> {};
template <> struct ValueTypeOf<SoSFImage> : HoldsValue<SoSFImage, ValueType::sfImage> {};
template <> struct ValueTypeOf<SoSFInt32> : HoldsValue<SoSFInt32, ValueType::sfInt32> {};
template <> struct ValueTypeOf<SoSFMatrix> : HoldsValue<SoSFMatrix, ValueType::sfMatrix> {};
template <> struct ValueTypeOf<VrmlSFNode> : HoldsValue<VrmlSFNode, ValueType::sfNode> {};
template <> struct ValueTypeOf<SoSFRotation> : HoldsValue<SoSFRotation, ValueType::sfRotation> {};
template <> struct ValueTypeOf<SoSFString> : HoldsValue<SoSFString, ValueType::sfString> {};
template <> struct ValueTypeOf<SoSFTime> : HoldsValue<SoSFTime, ValueType::sfTime> {};
template <> struct ValueTypeOf<SoSFVec2f> : HoldsValue<SoSFVec2f, ValueType::sfVec2f> {};
template <> struct ValueTypeOf<SoSFVec3f> : HoldsValue<SoSFVec3f, ValueType::sfVec3f> {};
template <> struct ValueTypeOf<SoMFColor> : HoldsValue<SoMFColor, ValueType::mfColor> {};
template <> struct ValueTypeOf<SoMFFloat> : HoldsValue<SoMFFloat, ValueType::mfFloat> {};
template <> struct ValueTypeOf<SoMFInt32> : HoldsValue<SoMFInt32, ValueType::mfInt32> {};
template <> struct ValueTypeOf<VrmlMFNode> : HoldsValue<VrmlMFNode, ValueType::mfNode> {};
template <> struct ValueTypeOf<SoMFRotation> : HoldsValue<SoMFRotation, ValueType::mfRotation> {};
template <> struct ValueTypeOf<SoMFString> : HoldsValue<SoMFString, ValueType::mfString> {};
template <> struct ValueTypeOf<SoMFTime> : HoldsValue<SoMFTime, ValueType::mfTime> {};
template <> struct ValueTypeOf<SoMFVec2f> : HoldsValue<SoMFVec2f, ValueType::mfVec2f> {};
template <> struct ValueTypeOf<SoMFVec3f> : HoldsValue<SoMFVec3f, ValueType::mfVec3f> {};
template <> struct ValueTypeOf<VrmlMFChildren> : HoldsValue<VrmlMFChildren, ValueType::children> {};

/// The type that a Script or prototype declares with that word ("SFVec3f"); `count` if there is none.
ValueType valueTypeNamed(std::string_view name);
/// The word for a type in a file.
const char* nameOf(ValueType type);
/// The value type of a field, or of a class of fields; `count` if the file format does not know it.
ValueType valueTypeOf(SoType fieldClass);
ValueType valueTypeOf(const SoField& field);
/// A new field of a type, with its neutral value and no container. The caller owns it.
SoField* newField(ValueType type);
/// How much room a field of a type takes, at an address fit for any object.
std::size_t fieldSize(ValueType type);
/// Makes a field of a type in a place of that size. It holds no value yet: the caller gives it one, and ends it by
/// its destructor.
SoField* makeFieldAt(ValueType type, void* place);

}  // namespace tessel
