// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>
#include <tessel/events/OnDemand.h>
#include <tessel/events/VrmlInterpEvalManager.h>
#include <tessel/toolkit/SoRef.h>

#include <Inventor/fields/SoMFFloat.h>
#include <Inventor/fields/SoMFVec3f.h>
#include <Inventor/fields/SoSFFloat.h>

/// Base of the nodes that turn a fraction into a value by a list of keys. Each kind adds `keyValue` and
/// `value_changed` of its own type.
///
/// A change of an input computes nothing: it goes out along the routes of the output, and the value is found when
/// the first of the destinations is read. Below the first key the first value holds, from the last key on the last
/// one; between two equal keys the value jumps. Where keys are not in ascending order the result lies somewhere
/// among the values. A fraction that is no number counts as below the first key.
class TESSEL_API VrmlInterpolator : public tessel::NodeClass<VrmlInterpolator, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "Interpolator";
  static std::span<const tessel::FieldSpec> fields();

  SoMFFloat key;           ///< exposedField, one 0: ascending fractions, one for each key value
  SoSFFloat set_fraction;  ///< eventIn, 0: where to evaluate

  /// 0 holds events back, from now on; 1 lets them go again, and sends one for all that were held back.
  void enable(int on);
  int isEnabled() const { return enableState == EnableState::enabled; }

  /// Finds the keys on both sides of the fraction. Called by `evaluate` when the number of keys in use is known.
  void setupInterpolation();
  /// Sets the output to the value at the fraction.
  virtual void evaluate() = 0;
  /// `value_changed` of the kind.
  virtual SoField* getOutputField() = 0;

  int isSpatial() const override { return 0; }
  void notify(SoNotList* list) override;
  void copyContents(const SoFieldContainer* from, SbBool copyConnections) override;

protected:
  VrmlInterpolator();
  ~VrmlInterpolator() override;

  /// For the end of the constructor of a kind: the output is evaluated on demand from now on.
  void connectOutput();

  /// The steps that all kinds with one value for each key share. With a `warning`, it is given when there are
  /// not as many keys as values.
  /// @param none   the output if there are no keys or no values
  /// @param blend  (weight of the first, first, second) gives the value between two keys
  template <class Values, class Output, class Value, class Blend>
  void evaluateSingle(const Values& values, Output& output, const Value& none, Blend blend,
                      const char* warning = nullptr);

  /// How the values of a kind with a list for each key are divided.
  struct Lists {
    int numValues = 0;
    int perKey = 0;
  };
  /// The same steps for such kinds.
  /// @param blend  (weight of the first, first, second, result, length) blends two lists
  template <class Blend>
  void evaluateLists(const SoMFVec3f& values, SoMFVec3f& output, const SbVec3f& none, Lists& lists,
                     Blend blend);

private:
  friend bool tessel::evaluateOnDemand(const SoField& output);
  enum class EnableState { enabled, disabled, changed };

  bool ownsOutput();
  void sendOutput();
  bool countKeys();
  void limitKeys(int numValues);

  int numKeys = 0;   // in use
  int index = 0;     // -1 none; 0 the first value; numKeys the last; else the second key of an interval
  float weight = 0;  // of the value at index - 1
  double inverseInterval = 1;  // of the keys at index - 1 and index
  tessel::SoRef<VrmlInterpEvalManager> engine;
  EnableState enableState = EnableState::enabled;
};
