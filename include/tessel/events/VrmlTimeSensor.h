// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/events/VrmlSensor.h>

#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFFloat.h>
#include <Inventor/fields/SoSFTime.h>

/// TimeSensor: the source of animation, which turns frame times into fractions of a cycle. All times are
/// absolute, in seconds.
class TESSEL_API VrmlTimeSensor : public tessel::NodeClass<VrmlTimeSensor, VrmlSensor> {
public:
  static constexpr const char* fileFormatName = "TimeSensor";
  static std::span<const tessel::FieldSpec> fields();

  SoSFTime cycleInterval;      ///< exposedField, 1: length of a cycle
  SoSFBool enabled;            ///< exposedField, TRUE: FALSE ends a run and starts none
  SoSFBool loop;               ///< exposedField, FALSE: whether a cycle follows the first
  SoSFTime startTime;          ///< exposedField, 0: when to start; dropped during a run
  SoSFTime stopTime;           ///< exposedField, 0: when to stop; no stop if it is not after the start
  SoSFTime cycleTime;          ///< eventOut, 0: when the cycle began, sent at its beginning
  SoSFFloat fraction_changed;  ///< eventOut, 0: how much of the cycle is over, 0 to 1
  SoSFBool isActive;           ///< eventOut, FALSE: a run is going on
  SoSFTime time;               ///< eventOut, 0: the time that the other outputs are for

  VrmlTimeSensor();
  int isSpatial() const override { return 0; }

protected:
  ~VrmlTimeSensor() override;
};
