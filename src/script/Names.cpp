// SPDX-License-Identifier: BSD-3-Clause
#include "script/Names.h"

#include <algorithm>
#include <iterator>

namespace tessel::script {
namespace {

struct MethodName {
  std::string_view name;
  int count;  // of arguments; -1 if the value decides
};

// In the order of Method.
constexpr MethodName methods[] = {{"abs", 1},
                                  {"acos", 1},
                                  {"asin", 1},
                                  {"atan", 1},
                                  {"ceil", 1},
                                  {"cos", 1},
                                  {"exp", 1},
                                  {"floor", 1},
                                  {"log", 1},
                                  {"max", 2},
                                  {"min", 2},
                                  {"pow", 2},
                                  {"random", 0},
                                  {"round", 1},
                                  {"sin", 1},
                                  {"sqrt", 1},
                                  {"tan", 1},
                                  {"getName", 0},
                                  {"getVersion", 0},
                                  {"getCurrentSpeed", 0},
                                  {"getCurrentFrameRate", 0},
                                  {"getWorldURL", 0},
                                  {"replaceWorld", 1},
                                  {"createVrmlFromString", 1},
                                  {"createVrmlFromURL", 3},
                                  {"addRoute", 4},
                                  {"deleteRoute", 4},
                                  {"loadURL", 2},
                                  {"setDescription", 1},
                                  {"getHSV", -1},
                                  {"setHSV", -1},
                                  {"inverse", -1},
                                  {"multvec", -1},
                                  {"slerp", -1},
                                  {"getAxis", -1},
                                  {"setAxis", -1},
                                  {"dot", -1},
                                  {"cross", -1},
                                  {"length", -1},
                                  {"normalize", -1},
                                  {"multiply", -1},
                                  {"add", -1},
                                  {"subtract", -1},
                                  {"divide", -1},
                                  {"negate", -1},
                                  {"charAt", -1},
                                  {"indexOf", -1},
                                  {"lastIndexOf", -1},
                                  {"substring", -1},
                                  {"toLowerCase", -1},
                                  {"toUpperCase", -1}};
static_assert(std::size(methods) == static_cast<std::size_t>(Method::unknown));

// In the order of Property.
constexpr std::string_view properties[] = {"E", "LN10", "LN2", "PI", "SQRT1_2", "SQRT2", "r",     "g",
                                           "b", "x",    "y",   "z",  "comp",    "array", "angle", "length"};
static_assert(std::size(properties) == static_cast<std::size_t>(Property::other));

constexpr Constructor constructors[] = {
    {"SFImage", Type::sfImage, 4, 4},       {"SFNode", Type::sfNode, 1, 1},
    {"SFString", Type::sfString, 0, -1},    {"SFVec2f", Type::sfVec2f, 2, 2},
    {"SFVec3f", Type::sfVec3f, 3, 3},       {"SFColor", Type::sfColor, 3, 3},
    {"SFRotation", Type::sfRotation, 2, 4}, {"MFInt32", Type::mfInt32, 0, -1},
    {"MFFloat", Type::mfFloat, 0, -1},      {"MFNode", Type::mfNode, 0, -1},
    {"MFString", Type::mfString, 0, -1},    {"MFVec2f", Type::mfVec2f, 0, -1},
    {"MFVec3f", Type::mfVec3f, 0, -1},      {"MFColor", Type::mfColor, 0, -1},
    {"MFRotation", Type::mfRotation, 0, -1}};

}  // namespace

const Constructor parseIntFunction{"parseInt", Type::undefined, 1, 2};
const Constructor parseFloatFunction{"parseFloat", Type::undefined, 1, 1};

bool Constructor::takes(int count) const {
  if (type == Type::sfRotation && count == 3) return false;
  return count >= least && (most < 0 || count <= most);
}

Method findMethod(Owner owner, std::string_view name, int count) {
  const Method first = owner == Owner::ownMATH      ? Method::abs
                       : owner == Owner::ownBROWSER ? Method::getName
                                                    : Method::getHSV;
  const Method end = owner == Owner::ownMATH      ? Method::getName
                     : owner == Owner::ownBROWSER ? Method::getHSV
                                                  : Method::unknown;
  for (int i = static_cast<int>(first); i < static_cast<int>(end); ++i)
    if (methods[i].name == name)
      return methods[i].count < 0 || methods[i].count == count ? static_cast<Method>(i) : Method::wrongCount;
  return Method::unknown;
}

Property findProperty(Owner owner, std::string_view name) {
  const int first = static_cast<int>(owner == Owner::ownMATH ? Property::E : Property::r);
  const int end = static_cast<int>(owner == Owner::ownMATH ? Property::r : Property::other);
  for (int i = first; i < end; ++i)
    if (properties[i] == name) return static_cast<Property>(i);
  return Property::other;
}

const Constructor* findConstructor(std::string_view name) {
  const auto* found = std::find_if(std::begin(constructors), std::end(constructors),
                                   [name](const Constructor& one) { return one.name == name; });
  return found == std::end(constructors) ? nullptr : found;
}

}  // namespace tessel::script
