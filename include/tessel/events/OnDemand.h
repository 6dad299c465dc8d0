// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <Inventor/fields/SoField.h>

namespace tessel {

/// Evaluates the interpolator whose output a field is, if the field is still connected from that interpolator's
/// engine; else does nothing and gives false.
bool evaluateOnDemand(const SoField& output);

/// The output of an interpolator: a field of the toolkit's type `Field` that asks the interpolator by itself when it
/// is read. The way through the engine that it is connected from would lead to the same place, but it is long.
template <class Field> class OnDemand : public Field {
public:
  using Field::operator=;

protected:
  void evaluateConnection() const override {
    if (!evaluateOnDemand(*this)) Field::evaluateConnection();
  }
};

}  // namespace tessel
