// SPDX-License-Identifier: BSD-3-Clause
#include "script/JsMath.h"

#include <cmath>
#include <cstdlib>

namespace tessel::script {

double JsMath::evaluateMethod(Method method, const double* args) {
  const double x = args[0];
  switch (method) {
    case Method::abs:
      return std::fabs(x);
    case Method::acos:
      return std::acos(x);
    case Method::asin:
      return std::asin(x);
    case Method::atan:
      return std::atan(x);
    case Method::ceil:
      return std::ceil(x);
    case Method::cos:
      return std::cos(x);
    case Method::exp:
      return std::exp(x);
    case Method::floor:
      return std::floor(x);
    case Method::log:
      return std::log(x);
    case Method::max:
      return args[1] < x ? x : args[1];
    case Method::min:
      return x < args[1] ? x : args[1];
    case Method::pow:
      return std::pow(x, args[1]);
    case Method::random:
      return drand48();
    case Method::round:
      return x - std::trunc(x) < 0.5 ? std::floor(x) : std::ceil(x);
    case Method::sin:
      return std::sin(x);
    case Method::sqrt:
      return std::sqrt(x);
    case Method::tan:
      return std::tan(x);
    default:
      return 0;
  }
}

// Two of them differ in the last place from what a mathematical library says.
double JsMath::evaluateProperty(Property property) {
  static constexpr double values[] = {2.718281828459045, 2.3025850929940455, 0.6931471805599453,
                                      3.141592653589793, 0.7071067811865476, 1.414213562373095};
  return values[static_cast<int>(property)];
}

}  // namespace tessel::script
