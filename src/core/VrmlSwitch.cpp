// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/core/VrmlSwitch.h>

#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/actions/SoGetMatrixAction.h>
#include <Inventor/actions/SoHandleEventAction.h>
#include <Inventor/actions/SoPickAction.h>
#include <Inventor/actions/SoSearchAction.h>

#include <tessel/actions/VrmlPreTraverseAction.h>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlSwitch::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlSwitch::whichChoice>("whichChoice", FieldKind::exposedField, {-1}),
      fieldSpec<&VrmlSwitch::choice>("choice", FieldKind::exposedField),
  };
  return table;
}

int VrmlSwitch::traverseAllForCallback = 0;

VrmlSwitch::VrmlSwitch() { init(); }

VrmlSwitch::VrmlSwitch(int expectedChildren) : NodeClass(expectedChildren) { init(); }

VrmlSwitch::~VrmlSwitch() = default;

void VrmlSwitch::init() {
  setUpFields();
  choice.setValue(childList.get());  // no longer the default: a file always gets it
}

void VrmlSwitch::childrenChanged() { choice.touch(); }

void VrmlSwitch::doChild(SoAction* action, int matchIndex) {
  int which = whichChoice.isIgnored() ? matchIndex : whichChoice.getValue();
  if (which < 0) which = matchIndex;
  if (which < 0 || which >= getNumChildren()) return;
  if (matchIndex >= 0 && matchIndex != which) return;
  childList->traverse(action, which, which);
}

void VrmlSwitch::doAction(SoAction* action) {
  int numIndices = 0;
  const int* indices = nullptr;
  if (action->getPathCode(numIndices, indices) != SoAction::IN_PATH)
    doChild(action, -1);
  else
    for (int i = 0; i < numIndices; ++i) doChild(action, indices[i]);
}

void VrmlSwitch::callback(SoCallbackAction* action) {
  if (traverseAllForCallback)
    VrmlBaseGroup::callback(action);
  else
    doAction(action);
}

void VrmlSwitch::search(SoSearchAction* action) {
  if (action->isSearchingAll()) {
    VrmlBaseGroup::search(action);
    return;
  }
  SoNode::search(action);  // NOLINT(bugprone-parent-virtual-call): the group would search all children
  if (!action->isFound()) doAction(action);
}

void VrmlSwitch::getMatrix(SoGetMatrixAction* action) {
  if (action->getCurPathCode() == SoAction::IN_PATH) doAction(action);
}

void VrmlSwitch::pick(SoPickAction* action) { doAction(action); }
void VrmlSwitch::getBoundingBox(SoGetBoundingBoxAction* action) { doAction(action); }
void VrmlSwitch::handleEvent(SoHandleEventAction* action) { doAction(action); }
void VrmlSwitch::doPreTraverse(VrmlPreTraverseAction* action) { doAction(action); }
void VrmlSwitch::GLRenderBelowPath(SoGLRenderAction* action) { doAction(action); }

void VrmlSwitch::GLRenderInPath(SoGLRenderAction* action) {
  switch (action->getCurPathCode()) {
    case SoAction::IN_PATH:
      doAction(action);
      break;
    case SoAction::BELOW_PATH:
      GLRenderBelowPath(action);
      break;
    default:
      break;
  }
}

template class tessel::NodeClass<VrmlSwitch, VrmlBaseGroup>;
