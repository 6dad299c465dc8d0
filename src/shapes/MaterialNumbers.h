// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <algorithm>
#include <limits>

#include <Inventor/elements/SoLazyElement.h>
#include <Inventor/misc/SoState.h>

namespace tessel {

/// The numbers of materials that callbacks may look up with the state as it is: the toolkit reads what they tell
/// without a look at how many there are. Made when the colors of a geometry stand in the state.
class MaterialNumbers {
public:
  explicit MaterialNumbers(SoState* state) {
    if (state->isElementEnabled(SoLazyElement::getClassStackIndex()))
      count = std::max(SoLazyElement::getInstance(state)->getNumDiffuse(), 1);
  }
  /// The number itself, or 0 if there is no such material.
  int operator()(int number) const { return number >= 0 && number < count ? number : 0; }

private:
  int count = std::numeric_limits<int>::max();
};

}  // namespace tessel
