// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

#include <Inventor/engines/SoEngine.h>

class VrmlInterpolator;

/// Stands between an interpolator and its output field, so that the value is computed when somebody reads it: an
/// engine without inputs and with one output, of the type of that field. It is never in a file.
class TESSEL_API VrmlInterpEvalManager : public SoEngine {
  typedef SoEngine inherited;

public:
  static void initClass();
  static SoType getClassTypeId() { return classTypeId; }
  SoType getTypeId() const override;

  /// An engine for an interpolator, which outlives it or calls `forget`. `fieldType` is that of its output.
  VrmlInterpEvalManager(VrmlInterpolator* interpolator, SoType fieldType);
  /// One that evaluates nothing, for the type system.
  VrmlInterpEvalManager();

  SoEngineOutput output;  ///< "output", of the field type

  /// Nobody is asked any more.
  void forget() { interpolator = nullptr; }

  const SoFieldData* getFieldData() const override;
  const SoEngineOutputData* getOutputData() const override;

protected:
  ~VrmlInterpEvalManager() override;
  void evaluate() override;

private:
  static void* createInstance();
  static SoType classTypeId;

  VrmlInterpolator* interpolator;
  SoType fieldType;
  const SoEngineOutputData* outputData;  // shared by all of one field type
};
