// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/events/TickSensor.h>
#include <tessel/events/VrmlSensor.h>

#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFFloat.h>
#include <Inventor/fields/SoSFTime.h>
#include <Inventor/sensors/SoOneShotSensor.h>

/// TimeSensor: the source of animation, which turns frame times into fractions of a cycle. All times are
/// absolute, in seconds, and compared to the microsecond.
///
/// A change of an input makes a plan for a run, from the frame time of that moment; between two changes the
/// sensor only ticks with the clock, and it listens to the clock only while a run is planned or going on. In a
/// frame it sends first `isActive` TRUE, then `cycleTime`, `fraction_changed` and `time`, last `isActive` FALSE.
/// The last output of a run is for the time at which the run ends, however late the frame is. Inputs that are no
/// finite numbers count as 0 or as very large.
class TESSEL_API VrmlTimeSensor : public tessel::NodeClass<VrmlTimeSensor, VrmlSensor> {
public:
  static constexpr const char* fileFormatName = "TimeSensor";
  static std::span<const tessel::FieldSpec> fields();

  SoSFTime cycleInterval;  ///< exposedField, 1: length of a cycle; without a positive one no fraction is sent
  SoSFBool enabled;        ///< exposedField, TRUE: FALSE ends a run and starts none
  SoSFBool loop;           ///< exposedField, FALSE: whether a cycle follows the first
  SoSFTime startTime;      ///< exposedField, 0: when to start; dropped during a run
  SoSFTime stopTime;       ///< exposedField, 0: when to stop; no stop if it is not after the start
  SoSFTime cycleTime;      ///< eventOut, 0: when the cycle began, sent at its beginning
  SoSFFloat fraction_changed;  ///< eventOut, 0: how much of the cycle is over, 0 to 1
  SoSFBool isActive;           ///< eventOut, FALSE: a run is going on
  SoSFTime time;               ///< eventOut, 0: the time that the other outputs are for

  VrmlTimeSensor();
  int isSpatial() const override { return 0; }
  bool readBody(tessel::WorldReader& reader) override;
  void notify(SoNotList* list) override;
  void copyContents(const SoFieldContainer* from, SbBool copyConnections) override;

  /// Sends what belongs to the time `t` of the run in force, but for `isActive`.
  virtual void sendOutEvents(const SbTime& t);
  /// Listens to the clock from now on.
  virtual void turnItOn(const SbTime& now);
  /// Whether a run may begin.
  virtual int isEnabled();

protected:
  ~VrmlTimeSensor() override;

private:
  static void inputChangedCB(void* self, SoSensor*);
  static void sensorCB(void* self);
  int bitOf(const SoField* field) const;
  void checkInputs();
  void setUpSensor(bool loopTurnedOff, int changes);
  void tick();
  void outputValues(bool sendEvents, double t, bool changesActivity, bool activity);
  void setActive(bool active);
  bool shouldStop(bool loopTurnedOff) const;
  double endOfRun(bool loopTurnedOff, double stop, double now) const;
  double inCycle(double t) const;
  bool mayPlan(double now);

  int changedMask;  // which inputs changed since they were last looked at
  bool outputting = false;
  SoOneShotSensor inputSensor;
  tessel::TickSensor tickSensor;
  double activeStart = 0;  // of the run in force
  double activeInterval = 0;
  double activeStop = 0;
  double nextCycle = 0;      // when the next `cycleTime` is due
  double planTime = 0;       // the frame time of the last plan,
  int numPlans = 0;          // and how many were made for it
  const bool inDefinition;   // in the body of a prototype, which never runs
  const void* openInstance;  // the instance that must be complete first, null if none
};
