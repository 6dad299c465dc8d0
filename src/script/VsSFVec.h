// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <Inventor/fields/SoSFVec2f.h>
#include <Inventor/fields/SoSFVec3f.h>

#include "script/VsVector.h"

namespace tessel::script {

/// What SFVec2f and SFVec3f have in common.
template <class Vector> struct VecTraits {
  using Single = Vector;
  static constexpr bool keepsComponents = true;
  static float component(const Vector& vector, int i) { return vector[i]; }
  static void setComponent(Vector& vector, int i, float x) { vector[i] = x; }
  static Vector make(const float* numbers) { return Vector(numbers); }
};

struct Vec2fTraits : VecTraits<SbVec2f> {
  using Field = SoSFVec2f;
  static constexpr Type type = Type::sfVec2f;
  static constexpr const char* name = "SFVec2f";
  static constexpr const char* notNumeric = RTE_EXPR_SFVEC2F_TYPE;
  static constexpr float neutral[] = {0, 0};
  static constexpr Property properties[] = {Property::x, Property::y};
  static const std::span<const MethodRule> methods;
};

struct Vec3fTraits : VecTraits<SbVec3f> {
  using Field = SoSFVec3f;
  static constexpr Type type = Type::sfVec3f;
  static constexpr const char* name = "SFVec3f";
  static constexpr const char* notNumeric = RTE_EXPR_SFVEC3F_TYPE;
  static constexpr float neutral[] = {0, 0, 0};
  static constexpr Property properties[] = {Property::x, Property::y, Property::z};
  static const std::span<const MethodRule> methods;
};

using VsSFVec2f = VsVector<Vec2fTraits>;
using VsSFVec3f = VsVector<Vec3fTraits>;

extern template class VsVector<Vec2fTraits>;
extern template class VsVector<Vec3fTraits>;

}  // namespace tessel::script
