// SPDX-License-Identifier: BSD-3-Clause
#include "core/LateRelease.h"

#include <utility>
#include <vector>

#include <Inventor/sensors/SoOneShotSensor.h>

#include <tessel/core/VrmlNode.h>
#include <tessel/toolkit/SoRef.h>

namespace tessel {
namespace {

// Never destroyed: nodes may outlive static objects.
struct Dying {
  Dying() { sensor.setPriority(0); }
  std::vector<SoRef<VrmlNode>> nodes;
  SoOneShotSensor sensor{[](void* self, SoSensor*) { std::exchange(static_cast<Dying*>(self)->nodes, {}); },
                         this};
};
Dying& dying() {
  static auto* const all = new Dying;
  return *all;
}

}  // namespace

void releaseAfterNotification(VrmlNode& node) {
  dying().nodes.emplace_back(&node);
  dying().sensor.schedule();
}

}  // namespace tessel
