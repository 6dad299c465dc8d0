// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/actions/VrmlCollideAction.h>

#include <Inventor/elements/SoModelMatrixElement.h>
#include <Inventor/nodes/SoGroup.h>

#include <tessel/toolkit/VrmlContainerElement.h>

SO_ACTION_SOURCE(VrmlCollideAction);

void VrmlCollideAction::initClass() {
  SO_ACTION_INIT_CLASS(VrmlCollideAction, SoAction);
  SO_ENABLE(VrmlCollideAction, SoModelMatrixElement);
  SO_ENABLE(VrmlCollideAction, VrmlContainerElement);
}

VrmlCollideAction::VrmlCollideAction() { SO_ACTION_CONSTRUCTOR(VrmlCollideAction); }

VrmlCollideAction::~VrmlCollideAction() = default;

bool VrmlCollideAction::collideXfBox(const SbXfBox3f&) { return false; }
void VrmlCollideAction::updateCollisionVolume() {}
void VrmlCollideAction::collideTriangle(const SbVec3f&, const SbVec3f&, const SbVec3f&) {}
void VrmlCollideAction::collideSphere(float) {}

void VrmlCollideAction::beginTraversal(SoNode*) {}
