// SPDX-License-Identifier: BSD-3-Clause
#pragma once

// The evaluation that the kinds of interpolators share; each kind's source includes this.

#include <algorithm>
#include <cstddef>

#include <tessel/events/OnDemand.h>
#include <tessel/events/VrmlInterpolator.h>
#include <tessel/toolkit/PlainReport.h>

#include "core/Effort.h"
#include "core/ValueType.h"

template <class Field> struct tessel::ValueTypeOf<tessel::OnDemand<Field>> : tessel::ValueTypeOf<Field> {};

template <class Values, class Output, class Value, class Blend>
void VrmlInterpolator::evaluateSingle(const Values& values, Output& output, const Value& none, Blend blend,
                                      const char* warning) {
  const int numValues = values.getNum();
  if (key.getNum() == 0 || numValues == 0) {
    output.setValue(none);
    return;
  }
  countKeys();
  if (warning && numKeys != numValues) tessel::postPlain(warning);
  limitKeys(numValues);
  setupInterpolation();
  if (index < 0) return;
  const Value* const value = values.getValues(0);
  if (index == 0 || index == numKeys)
    output.setValue(value[index == 0 ? 0 : numKeys - 1]);
  else
    output.setValue(blend(weight, value[index - 1], value[index]));
}

template <class Blend>
void VrmlInterpolator::evaluateLists(const SoMFVec3f& values, SoMFVec3f& output, const SbVec3f& none,
                                     Lists& lists, Blend blend) {
  const int numValues = values.getNum();
  if (key.getNum() == 0 || numValues == 0) {
    output.setValue(none);
    return;
  }
  if (countKeys()) lists.perKey = 0;
  if (lists.numValues != numValues) lists = {numValues, 0};
  if (lists.perKey == 0) lists.perKey = numValues / numKeys;
  const int length = lists.perKey;
  if (output.getNum() != length) output.setNum(length);
  setupInterpolation();
  if (index < 0 || length == 0) return;
  tessel::Effort::add(static_cast<std::size_t>(length) * sizeof(SbVec3f));
  const SbVec3f* const first = values.getValues(std::max(0, index - 1) * length);
  SbVec3f* const result = output.startEditing();
  if (index == 0 || index == numKeys)
    std::copy_n(first, length, result);
  else
    blend(weight, first, first + length, result, length);
  output.finishEditing();
}
