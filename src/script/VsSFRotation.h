// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <Inventor/SbVec3f.h>
#include <Inventor/fields/SoSFRotation.h>

#include "script/VsVector.h"

namespace tessel::script {

/// Its components are the axis and the angle in radians, which the toolkit finds anew at each look.
struct RotationTraits {
  using Single = SbRotation;
  using Field = SoSFRotation;
  static constexpr Type type = Type::sfRotation;
  static constexpr const char* name = "SFRotation";
  static constexpr bool keepsComponents = false;
  static constexpr const char* notNumeric = RTE_EXPR_SFROTATION_TYPE;
  static constexpr float neutral[] = {0, 0, 0, 1};
  static constexpr Property properties[] = {Property::x, Property::y, Property::z, Property::angle};
  static const std::span<const MethodRule> methods;

  static float component(const SbRotation& rotation, int i);
  static void setComponent(SbRotation& rotation, int i, float x);
  static SbRotation make(const float* numbers) { return SbRotation(SbVec3f(numbers), numbers[3]); }
};

using VsSFRotation = VsVector<RotationTraits>;

template <> void VsSFRotation::methodCall(Value& result, Method method, Arguments arguments);
template <> void VsSFRotation::constructField(Arguments arguments);
extern template class VsVector<RotationTraits>;

}  // namespace tessel::script
