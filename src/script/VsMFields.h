// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <Inventor/fields/SoMFColor.h>
#include <Inventor/fields/SoMFFloat.h>
#include <Inventor/fields/SoMFInt32.h>
#include <Inventor/fields/SoMFRotation.h>
#include <Inventor/fields/SoMFString.h>
#include <Inventor/fields/SoMFVec2f.h>
#include <Inventor/fields/SoMFVec3f.h>

#include <tessel/toolkit/SoRef.h>

#include "script/NodeList.h"
#include "script/SharedText.h"
#include "script/VsMField.h"
#include "script/VsSFColor.h"
#include "script/VsSFRotation.h"
#include "script/VsSFVec.h"

namespace tessel::script {

/// Multiples that hold their values as the toolkit's field does.
template <class MultipleField, class StoredValue> struct PlainMultiple {
  using Field = MultipleField;
  using Stored = StoredValue;
  static constexpr int most = 1 << 24;
  static constexpr std::size_t bytesInField = sizeof(StoredValue);

  static int count(const Field& field) { return field.getNum(); }
  static const Stored& at(const Field& field, int i) { return *field.getValues(i); }
  static std::span<const Stored> values(const Field& field) {
    const int n = field.getNum();
    return {field.getValues(0), static_cast<std::size_t>(n)};
  }
  static bool set(Field& field, int first, std::span<const Stored> values) {
    if (values.size() == 1)
      field.set1Value(first, values[0]);
    else
      field.setValues(first, static_cast<int>(values.size()), values.data());
    return true;
  }
  static void truncate(Field& field, int count) { field.setNum(count); }
};

struct MFInt32Traits : PlainMultiple<SoMFInt32, std::int32_t> {
  static constexpr Type type = Type::mfInt32;
  static constexpr const char* name = "MFInt32";
  static constexpr const char* kind = "numeric";
  static constexpr const char* badElement = RTE_EXPR_MFINT32_TYPE;
  static Stored neutral() { return 0; }
  static bool fits(const Value& value, bool /*isElement*/) { return value.isScalar(); }
  static Stored from(const Value& value) { return value.getInt(); }
  static void give(Value& result, Stored value) { result.setInt(value); }
};

struct MFFloatTraits : PlainMultiple<SoMFFloat, float> {
  static constexpr Type type = Type::mfFloat;
  static constexpr const char* name = "MFFloat";
  static constexpr const char* kind = "numeric";
  static constexpr const char* badElement = RTE_EXPR_MFFLOAT_TYPE;
  static Stored neutral() { return 0; }
  static bool fits(const Value& value, bool /*isElement*/) { return value.isScalar(); }
  static Stored from(const Value& value) { return value.getFloat(); }
  static void give(Value& result, Stored value) { result.setFloat(value); }
};

/// Multiples of vectors: an element is no value of its own but a place in the whole. A constructor takes single ones
/// alone.
template <class MultipleField, class SingleTraits, Type ofElement>
struct VectorMultiple : PlainMultiple<MultipleField, typename SingleTraits::Single> {
  using Single = VsVector<SingleTraits>;
  using Components = SingleTraits;
  using Stored = typename SingleTraits::Single;
  static constexpr Type elementType = ofElement;
  static Stored neutral() { return Stored(SingleTraits::neutral); }
  static bool fits(const Value& value, bool isElement) {
    return value.type() == SingleTraits::type || (isElement && value.type() == ofElement);
  }
  static Stored from(const Value& value) {
    if (value.type() == SingleTraits::type) return Single::valueOf(value);
    Value copy;
    value.object()->copyVector(copy, value.element());
    return Single::valueOf(copy);
  }
};

struct MFVec2fTraits : VectorMultiple<SoMFVec2f, Vec2fTraits, Type::vec2fElement> {
  static constexpr Type type = Type::mfVec2f;
  static constexpr const char* name = "MFVec2f";
  static constexpr const char* kind = "SFVec2f's";
  static constexpr const char* badElement = RTE_EXPR_MFVEC2F_TYPE;
};
struct MFVec3fTraits : VectorMultiple<SoMFVec3f, Vec3fTraits, Type::vec3fElement> {
  static constexpr Type type = Type::mfVec3f;
  static constexpr const char* name = "MFVec3f";
  static constexpr const char* kind = "SFVec3f's";
  static constexpr const char* badElement = RTE_EXPR_MFVEC3F_TYPE;
};
struct MFColorTraits : VectorMultiple<SoMFColor, ColorTraits, Type::colorElement> {
  static constexpr Type type = Type::mfColor;
  static constexpr const char* name = "MFColor";
  static constexpr const char* kind = "SFColor's";
  static constexpr const char* badElement = RTE_EXPR_MFCOLOR_TYPE;
};
struct MFRotationTraits : VectorMultiple<SoMFRotation, RotationTraits, Type::rotationElement> {
  static constexpr Type type = Type::mfRotation;
  static constexpr const char* name = "MFRotation";
  static constexpr const char* kind = "SFRotation's";
  static constexpr const char* badElement = RTE_EXPR_MFROTATION_TYPE;
};

/// Strings of a script's own share their characters; those in a field are copies.
struct MFStringTraits {
  using Field = SoMFString;
  using Stored = SharedText;
  static constexpr Type type = Type::mfString;
  static constexpr int most = 1 << 20;
  static constexpr std::size_t mostCharacters = std::size_t{1} << 28;  // in one field
  static constexpr const char* name = "MFString";
  static constexpr const char* kind = "strings";
  static constexpr const char* badElement = RTE_EXPR_MFSTRING_TYPE;
  static Stored neutral() { return {}; }
  static bool fits(const Value& value, bool /*isElement*/) { return value.type() == Type::sfString; }
  static Stored from(const Value& value);
  static void give(Value& result, Stored value);
  static int count(const Field& field) { return field.getNum(); }
  static Stored at(const Field& field, int i);
  /// What a string takes in the field.
  static std::size_t bytesOf(const Stored& text) { return sizeof(SbString) + text.size(); }
  static std::size_t bytesAt(const Field& field, int i) {
    return sizeof(SbString) + static_cast<std::size_t>(field[i].getLength());
  }
  static std::vector<Stored> values(const Field& field);
  /// False, after a report, if there would be more characters than a field may have.
  static bool set(Field& field, int first, std::span<const Stored> values);
  static void truncate(Field& field, int count) { field.setNum(count); }
};

struct MFNodeTraits {
  using Field = SoField;  // children too
  using Stored = SoRef<SoNode>;
  static constexpr Type type = Type::mfNode;
  static constexpr int most = 1 << 20;
  static constexpr std::size_t bytesInField = 200;  // none at all is a node of its own among children
  static constexpr const char* name = "MFNode";
  static constexpr const char* kind = "SFNode's";
  static constexpr const char* badElement = RTE_EXPR_MFNODE_TYPE;
  static Stored neutral() { return {}; }
  static bool fits(const Value& value, bool /*isElement*/) { return value.type() == Type::sfNode; }
  static Stored from(const Value& value);
  static void give(Value& result, const Stored& value);
  static int count(const Field& field) { return NodeList::count(field); }
  static Stored at(const Field& field, int i) { return Stored(NodeList::at(field, i)); }
  static std::vector<Stored> values(const Field& field) { return NodeList::values(field); }
  static bool set(Field& field, int first, std::span<const Stored> values) {
    NodeList::set(field, first, values);
    return true;
  }
  static void truncate(Field& field, int count) { NodeList::truncate(field, count); }
};

using VsMFInt32 = VsMField<MFInt32Traits>;
using VsMFFloat = VsMField<MFFloatTraits>;
using VsMFString = VsMField<MFStringTraits>;
using VsMFNode = VsMField<MFNodeTraits>;
using VsMFVec2f = VsMField<MFVec2fTraits>;
using VsMFVec3f = VsMField<MFVec3fTraits>;
using VsMFColor = VsMField<MFColorTraits>;
using VsMFRotation = VsMField<MFRotationTraits>;

extern template class VsMField<MFInt32Traits>;
extern template class VsMField<MFFloatTraits>;
extern template class VsMField<MFStringTraits>;
extern template class VsMField<MFNodeTraits>;
extern template class VsMField<MFVec2fTraits>;
extern template class VsMField<MFVec3fTraits>;
extern template class VsMField<MFColorTraits>;
extern template class VsMField<MFRotationTraits>;

}  // namespace tessel::script
