// SPDX-License-Identifier: BSD-3-Clause
#include "actions/VrmlCallbackAction.h"

#include <Inventor/nodes/SoShape.h>

#include <tessel/toolkit/SoRef.h>

namespace {

/// The toolkit takes a shape and asks only for its type: this one answers with any.
class StandIn : public SoShape {
public:
  static StandIn* as(SoType type) {
    static const tessel::SoRef<StandIn> shape(new StandIn);
    shape->type = type;
    return shape.get();
  }
  SoType getTypeId() const override { return type; }
  void computeBBox(SoAction*, SbBox3f&, SbVec3f&) override {}

protected:
  void generatePrimitives(SoAction*) override {}

private:
  SoType type;
};

}  // namespace

bool VrmlCallbackAction::shouldGeneratePrimitives(SoType type) const {
  return action->shouldGeneratePrimitives(StandIn::as(type));
}

void VrmlCallbackAction::invokeTriangleCallbacks(SoType type, const SoPrimitiveVertex* v1,
                                                 const SoPrimitiveVertex* v2,
                                                 const SoPrimitiveVertex* v3) const {
  action->invokeTriangleCallbacks(StandIn::as(type), v1, v2, v3);
}

void VrmlCallbackAction::invokeLineSegmentCallbacks(SoType type, const SoPrimitiveVertex* v1,
                                                    const SoPrimitiveVertex* v2) const {
  action->invokeLineSegmentCallbacks(StandIn::as(type), v1, v2);
}

void VrmlCallbackAction::invokePointCallbacks(SoType type, const SoPrimitiveVertex* v) const {
  action->invokePointCallbacks(StandIn::as(type), v);
}
