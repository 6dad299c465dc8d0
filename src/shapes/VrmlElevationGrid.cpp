// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlElevationGrid.h>

#include <tessel/toolkit/VrmlContainerElement.h>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlElevationGrid::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlElevationGrid::color>("color", FieldKind::exposedField),
      fieldSpec<&VrmlElevationGrid::normal>("normal", FieldKind::exposedField),
      fieldSpec<&VrmlElevationGrid::texCoord>("texCoord", FieldKind::exposedField),
      fieldSpec<&VrmlElevationGrid::ccw>("ccw", FieldKind::field, {true}),
      fieldSpec<&VrmlElevationGrid::colorPerVertex>("colorPerVertex", FieldKind::field, {true}),
      fieldSpec<&VrmlElevationGrid::creaseAngle>("creaseAngle", FieldKind::field, {0}),
      fieldSpec<&VrmlElevationGrid::height>("height", FieldKind::field),
      fieldSpec<&VrmlElevationGrid::normalPerVertex>("normalPerVertex", FieldKind::field, {true}),
      fieldSpec<&VrmlElevationGrid::solid>("solid", FieldKind::field, {true}),
      fieldSpec<&VrmlElevationGrid::xDimension>("xDimension", FieldKind::field, {0}),
      fieldSpec<&VrmlElevationGrid::xSpacing>("xSpacing", FieldKind::field, {0}),
      fieldSpec<&VrmlElevationGrid::zDimension>("zDimension", FieldKind::field, {0}),
      fieldSpec<&VrmlElevationGrid::zSpacing>("zSpacing", FieldKind::field, {0}),
      fieldSpec<&VrmlElevationGrid::set_height>("set_height", FieldKind::eventIn, {0}),
  };
  return table;
}

VrmlElevationGrid::VrmlElevationGrid() { setUpFields(); }

VrmlElevationGrid::~VrmlElevationGrid() = default;

int VrmlElevationGrid::getContainerFlags() const {
  return VrmlContainerElement::normal | VrmlContainerElement::color | VrmlContainerElement::texCoord;
}

void VrmlElevationGrid::computeBBox(SoAction*, SbBox3f&, SbVec3f&) {}

void VrmlElevationGrid::generatePrimitives(SoAction*) {}

template class tessel::NodeClass<VrmlElevationGrid, VrmlGeometry>;
