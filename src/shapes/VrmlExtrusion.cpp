// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlExtrusion.h>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlExtrusion::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlExtrusion::crossSection>("crossSection", FieldKind::field),
      fieldSpec<&VrmlExtrusion::orientation>("orientation", FieldKind::field),
      fieldSpec<&VrmlExtrusion::scale>("scale", FieldKind::field),
      fieldSpec<&VrmlExtrusion::spine>("spine", FieldKind::field),
      fieldSpec<&VrmlExtrusion::beginCap>("beginCap", FieldKind::field, {true}),
      fieldSpec<&VrmlExtrusion::endCap>("endCap", FieldKind::field, {true}),
      fieldSpec<&VrmlExtrusion::ccw>("ccw", FieldKind::field, {true}),
      fieldSpec<&VrmlExtrusion::solid>("solid", FieldKind::field, {true}),
      fieldSpec<&VrmlExtrusion::convex>("convex", FieldKind::field, {true}),
      fieldSpec<&VrmlExtrusion::creaseAngle>("creaseAngle", FieldKind::field, {0}),
      fieldSpec<&VrmlExtrusion::set_crossSection>("set_crossSection", FieldKind::eventIn),
      fieldSpec<&VrmlExtrusion::set_orientation>("set_orientation", FieldKind::eventIn),
      fieldSpec<&VrmlExtrusion::set_scale>("set_scale", FieldKind::eventIn),
      fieldSpec<&VrmlExtrusion::set_spine>("set_spine", FieldKind::eventIn),
  };
  return table;
}

namespace {

// A list is the default of a field and of the event that replaces its value.
template <class Field, class Value, std::size_t n>
void setDefaultList(Field& field, Field& event, const Value (&values)[n]) {
  for (Field* f : {&field, &event}) {
    f->setValues(0, static_cast<int>(n), values);
    f->setDefault(TRUE);
  }
}

}  // namespace

VrmlExtrusion::VrmlExtrusion() {
  setUpFields();
  const SbVec2f square[] = {{1, 1}, {1, -1}, {-1, -1}, {-1, 1}, {1, 1}};
  const SbRotation unturned[] = {SbRotation::identity(), SbRotation::identity()};
  const SbVec2f unscaled[] = {{1, 1}, {1, 1}};
  const SbVec3f upwards[] = {{0, 0, 0}, {0, 1, 0}};
  setDefaultList(crossSection, set_crossSection, square);
  setDefaultList(orientation, set_orientation, unturned);
  setDefaultList(scale, set_scale, unscaled);
  setDefaultList(spine, set_spine, upwards);
}

VrmlExtrusion::~VrmlExtrusion() = default;

void VrmlExtrusion::computeBBox(SoAction*, SbBox3f&, SbVec3f&) {}

void VrmlExtrusion::generatePrimitives(SoAction*) {}

template class tessel::NodeClass<VrmlExtrusion, VrmlGeometry>;
