// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <Inventor/fields/SoSFColor.h>

#include "script/VsVector.h"

namespace tessel::script {

struct ColorTraits {
  using Single = SbColor;
  using Field = SoSFColor;
  static constexpr Type type = Type::sfColor;
  static constexpr const char* name = "SFColor";
  static constexpr bool keepsComponents = true;
  static constexpr const char* notNumeric = RTE_EXPR_SFCOLOR_TYPE;
  static constexpr float neutral[] = {0, 0, 0};
  static constexpr Property properties[] = {Property::r, Property::g, Property::b};
  static const std::span<const MethodRule> methods;

  static float component(const SbColor& color, int i) { return color[i]; }
  static void setComponent(SbColor& color, int i, float x) { color[i] = x; }
  static SbColor make(const float* numbers) { return SbColor(numbers); }
};

using VsSFColor = VsVector<ColorTraits>;

template <> void VsSFColor::methodCall(Value& result, Method method, Arguments arguments);
extern template class VsVector<ColorTraits>;

}  // namespace tessel::script
