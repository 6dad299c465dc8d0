// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string_view>

#include "script/Type.h"

namespace tessel::script {

/// Whom a method or property belongs to.
enum class Owner : std::uint8_t { ownMATH, ownBROWSER, ownGLOBAL, ownOBJECT };

enum class Method : std::uint8_t {
  // Math
  abs,
  acos,
  asin,
  atan,
  ceil,
  cos,
  exp,
  floor,
  log,
  max,
  min,
  pow,
  random,
  round,
  sin,
  sqrt,
  tan,
  // Browser
  getName,
  getVersion,
  getCurrentSpeed,
  getCurrentFrameRate,
  getWorldURL,
  replaceWorld,
  createVrmlFromString,
  createVrmlFromURL,
  addRoute,
  deleteRoute,
  loadURL,
  setDescription,
  // values
  getHSV,
  setHSV,
  inverse,
  multvec,
  slerp,
  getAxis,
  setAxis,
  dot,
  cross,
  length,
  normalize,
  multiply,
  add,
  subtract,
  divide,
  negate,
  charAt,
  indexOf,
  lastIndexOf,
  substring,
  toLowerCase,
  toUpperCase,
  unknown,
  wrongCount  ///< a known name with a wrong number of arguments
};

/// The method of an owner that takes `count` arguments, or `unknown` or `wrongCount`. For values the number depends
/// on the type, which is known only when the script runs.
Method findMethod(Owner owner, std::string_view name, int count);

enum class Property : std::uint8_t {
  // Math
  E,
  LN10,
  LN2,
  PI,
  SQRT1_2,
  SQRT2,
  // values
  r,
  g,
  b,
  x,
  y,
  z,
  comp,
  array,
  angle,
  length,
  other
};

/// The property of that name. Anything may be a property of a node, so values have `other` too.
Property findProperty(Owner owner, std::string_view name);

/// What `new` and the two parse functions build.
struct Constructor {
  std::string_view name;
  Type type;        ///< `undefined` for the two functions
  int least, most;  ///< numbers of arguments; `most` is negative where there is no limit
  bool takes(int count) const;
};

/// Null for an unknown name. The parse functions are no names for `new`.
const Constructor* findConstructor(std::string_view name);
extern const Constructor parseIntFunction;
extern const Constructor parseFloatFunction;

}  // namespace tessel::script
