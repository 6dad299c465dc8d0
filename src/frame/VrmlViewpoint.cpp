// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/frame/VrmlViewpoint.h>

#include <tessel/core/VrmlDB.h>

#include "core/NodeClassImpl.h"

using namespace tessel;

std::span<const FieldSpec> VrmlViewpoint::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlViewpoint::position>("position", FieldKind::exposedField, {0, 0, 10}),
      fieldSpec<&VrmlViewpoint::orientation>("orientation", FieldKind::exposedField, {0, 0, 1, 0}),
      fieldSpec<&VrmlViewpoint::fieldOfView>("fieldOfView", FieldKind::exposedField, {0.785398F}),
      fieldSpec<&VrmlViewpoint::jump>("jump", FieldKind::exposedField, {true}),
      fieldSpec<&VrmlViewpoint::bindTime>("bindTime", FieldKind::eventOut),
      fieldSpec<&VrmlViewpoint::description>("description", FieldKind::field),
  };
  return table;
}

VrmlViewpoint::VrmlViewpoint() { setUpFields(); }

VrmlViewpoint::~VrmlViewpoint() = default;

void VrmlViewpoint::setOffsets(const SbVec3f& movedBy, const SbRotation& turnedBy) {
  offsetPosition = movedBy;
  offsetOrientation = turnedBy;
}

void VrmlViewpoint::doBind() {
  bindTime.setValue(VrmlDB::getFrameTime());
  VrmlBindingNode::doBind();
}

void VrmlViewpoint::doUnbind() {
  bindTime.setValue(VrmlDB::getFrameTime());
  VrmlBindingNode::doUnbind();
}

template class tessel::NodeClass<VrmlViewpoint, VrmlBindingNode>;
