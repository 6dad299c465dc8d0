// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

#include <Inventor/SoPath.h>
#include <Inventor/sensors/SoNodeSensor.h>

#include <tessel/toolkit/SoRef.h>

/// A node sensor that calls back at once, inside the notification, instead of from a queue.
///
/// In the callback `getTriggerNode` gives the node where the notification began, that is where the last route
/// that it crossed ends, `getTriggerField` the field it came through last, null if none, and `getTriggerPath`
/// the path from the attached node down to the trigger node, null unless asked for by setTriggerPathFlag.
/// What is read then may not be up to date yet. The callback may delete the sensor.
class TESSEL_API VrmlNotifySensor : public SoNodeSensor {
public:
  VrmlNotifySensor(SoSensorCB* callback, void* data);
  ~VrmlNotifySensor() override;

  SoNode* getTriggerNode() const { return triggerNode; }
  SoField* getTriggerField() const { return triggerField; }
  SoPath* getTriggerPath() const { return triggerPath.get(); }

  void schedule() override;
  void unschedule() override;
  SbBool isScheduled() const override;
  void notify(SoNotList* list) override;

private:
  SoNode* triggerNode = nullptr;
  SoField* triggerField = nullptr;
  tessel::SoRef<SoPath> triggerPath;
};
