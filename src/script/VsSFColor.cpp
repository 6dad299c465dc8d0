// SPDX-License-Identifier: BSD-3-Clause
#include "script/VsSFColor.h"

#include <algorithm>

namespace tessel::script {
namespace {

constexpr MethodRule colorMethods[] = {
    {Method::getHSV, 0, 0, "SFColor getHSV"},
    {Method::setHSV, 3, 3, "SFColor setHSV"},
};

}  // namespace

constinit const std::span<const MethodRule> ColorTraits::methods = colorMethods;

template <> void VsSFColor::methodCall(Value& result, Method method, Arguments arguments) {
  float hsv[3] = {};
  if (method == Method::getHSV) {
    get().getHSVValue(hsv);
    allocField(result, Type::mfFloat);
    Value number;
    for (const float x : hsv) {
      number.setFloat(x);
      result.object()->append(number);
    }
    return;
  }
  for (std::size_t i = 0; i < 3; ++i) {
    if (!arguments[i]->isScalar()) return badArgument(method);
    hsv[i] = arguments[i]->getFloat();
  }
  SbColor color;
  color.setHSVValue(hsv);
  set(color);
}

template class VsVector<ColorTraits>;

}  // namespace tessel::script
