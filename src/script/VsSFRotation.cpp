// SPDX-License-Identifier: BSD-3-Clause
#include "script/VsSFRotation.h"

#include "script/VsSFVec.h"

namespace tessel::script {
namespace {

constexpr MethodRule rotationMethods[] = {
    {Method::multvec, 1, 1, "SFRotation multVec"}, {Method::slerp, 2, 2, "SFRotation slerp"},
    {Method::inverse, 0, 0, "SFRotation inverse"}, {Method::multiply, 1, 1, "SFRotation multiply"},
    {Method::getAxis, 0, 0, "SFRotation getAxis"}, {Method::setAxis, 1, 1, "SFRotation setAxis"},
};

struct AxisAngle {
  explicit AxisAngle(const SbRotation& rotation) { rotation.getValue(axis, angle); }
  SbVec3f axis;
  float angle;
};

}  // namespace

constinit const std::span<const MethodRule> RotationTraits::methods = rotationMethods;

float RotationTraits::component(const SbRotation& rotation, int i) {
  const AxisAngle parts(rotation);
  return i < 3 ? parts.axis[i] : parts.angle;
}

void RotationTraits::setComponent(SbRotation& rotation, int i, float x) {
  AxisAngle parts(rotation);
  (i < 3 ? parts.axis[i] : parts.angle) = x;
  rotation.setValue(parts.axis, parts.angle);
}

template <> void VsSFRotation::methodCall(Value& result, Method method, Arguments arguments) {
  const auto takes = [&](std::size_t i, Type type) {
    const bool fits = arguments[i]->type() == type;
    if (!fits) badArgument(method);
    return fits;
  };
  switch (method) {
    case Method::multvec:
      if (takes(0, Type::sfVec3f)) {
        SbVec3f rotated;
        get().multVec(VsSFVec3f::valueOf(*arguments[0]), rotated);
        VsSFVec3f::setResult(result, rotated);
      }
      return;
    case Method::slerp:
      if (!takes(0, ofType)) return;
      if (!arguments[1]->isScalar()) return badArgument(method);
      return setResult(result, SbRotation::slerp(get(), valueOf(*arguments[0]), arguments[1]->getFloat()));
    case Method::inverse:
      return setResult(result, get().inverse());
    case Method::multiply:
      if (takes(0, ofType)) set(get() * valueOf(*arguments[0]));
      return;
    case Method::getAxis:
      return VsSFVec3f::setResult(result, AxisAngle(get()).axis);
    case Method::setAxis:
      if (takes(0, Type::sfVec3f)) VsSFVec3f::setResult(result, VsSFVec3f::valueOf(*arguments[0]));
      return;
    default:
      return;
  }
}

// Four numbers, an axis and an angle, or two directions.
template <> void VsSFRotation::constructField(Arguments arguments) {
  if (arguments.size() != 2) return constructFromNumbers(arguments);
  const Value& second = *arguments[1];
  if (arguments[0]->type() != Type::sfVec3f)
    return VsError::postRuntimeError("%s", RTE_FLD_SFROTATION_BAD_ARG1);
  const SbVec3f& axis = VsSFVec3f::valueOf(*arguments[0]);
  if (second.isScalar()) {
    set(SbRotation(axis, second.getFloat()));
  } else if (second.type() == Type::sfVec3f) {
    set(SbRotation(axis, VsSFVec3f::valueOf(second)));
  } else {
    VsError::postRuntimeError("%s", RTE_FLD_SFROTATION_BAD_ARG2);
  }
}

template class VsVector<RotationTraits>;

}  // namespace tessel::script
