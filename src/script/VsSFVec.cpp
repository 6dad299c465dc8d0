// SPDX-License-Identifier: BSD-3-Clause
#include "script/VsSFVec.h"

namespace tessel::script {
namespace {

constexpr MethodRule vec2fMethods[] = {
    {Method::dot, 1, 1, "SFVec2f dot"},
    {Method::length, 0, 0, "SFVec2f length"},
    {Method::normalize, 0, 0, "SFVec2f normalize"},
    {Method::multiply, 1, 1, "SFVec2f multiply"},
    {Method::divide, 1, 1, "SFVec2f divide"},
    {Method::add, 1, 1, "SFVec2f add"},
    {Method::subtract, 1, 1, "SFVec2f subtract"},
    {Method::negate, 0, 0, "SFVec2f negate"},
};

constexpr MethodRule vec3fMethods[] = {
    {Method::dot, 1, 1, "SFVec3f dot"},           {Method::cross, 1, 1, "SFVec3f cross"},
    {Method::length, 0, 0, "SFVec3f length"},     {Method::normalize, 0, 0, "SFVec3f normalize"},
    {Method::multiply, 1, 1, "SFVec3f multiply"}, {Method::divide, 1, 1, "SFVec3f divide"},
    {Method::add, 1, 1, "SFVec3f add"},           {Method::subtract, 1, 1, "SFVec3f subtract"},
    {Method::negate, 0, 0, "SFVec3f negate"},
};

}  // namespace

constinit const std::span<const MethodRule> Vec2fTraits::methods = vec2fMethods;
constinit const std::span<const MethodRule> Vec3fTraits::methods = vec3fMethods;

template <class Traits> void VsVector<Traits>::methodCall(Value& result, Method method, Arguments arguments) {
  const Single& vector = get();
  const auto takes = [&](bool fits) {
    if (!fits) badArgument(method);
    return fits;
  };
  const auto takesVector = [&] { return takes(arguments[0]->type() == ofType); };
  const auto takesNumber = [&] { return takes(arguments[0]->isScalar()); };
  switch (method) {
    case Method::dot:
      if (takesVector()) result.setFloat(vector.dot(valueOf(*arguments[0])));
      return;
    case Method::cross:
      if constexpr (ofType == Type::sfVec3f)
        if (takesVector()) setResult(result, vector.cross(valueOf(*arguments[0])));
      return;
    case Method::length:
      return result.setFloat(vector.length());
    case Method::normalize: {
      Single unit = vector;
      unit.normalize();
      return setResult(result, unit);
    }
    case Method::multiply:
      if (takesNumber()) setResult(result, vector * arguments[0]->getFloat());
      return;
    case Method::divide:
      if (takesNumber())
        setResult(result, vector * static_cast<float>(1.0 / double{arguments[0]->getFloat()}));
      return;
    case Method::add:
      if (takesVector()) setResult(result, vector + valueOf(*arguments[0]));
      return;
    case Method::subtract:
      if (takesVector()) setResult(result, vector - valueOf(*arguments[0]));
      return;
    case Method::negate:
      return setResult(result, -vector);
    default:
      return;
  }
}

template class VsVector<Vec2fTraits>;
template class VsVector<Vec3fTraits>;

}  // namespace tessel::script
