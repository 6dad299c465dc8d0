// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/actions/VrmlCountAction.h>

#include <Inventor/elements/SoComplexityElement.h>
#include <Inventor/elements/SoComplexityTypeElement.h>
#include <Inventor/elements/SoFontNameElement.h>
#include <Inventor/elements/SoFontSizeElement.h>
#include <Inventor/elements/SoSwitchElement.h>
#include <Inventor/nodes/SoGroup.h>

#include <tessel/core/VrmlNode.h>
#include <tessel/toolkit/VrmlContainerElement.h>

SO_ACTION_SOURCE(VrmlCountAction);

namespace {

void countGroup(SoAction* action, SoNode* node) { node->doAction(action); }
void noCount(SoAction*, SoNode*) {}

}  // namespace

void VrmlCountAction::initClass() {
  SO_ACTION_INIT_CLASS(VrmlCountAction, SoAction);
  SO_ENABLE(VrmlCountAction, SoFontNameElement);
  SO_ENABLE(VrmlCountAction, SoFontSizeElement);
  SO_ENABLE(VrmlCountAction, SoComplexityElement);
  SO_ENABLE(VrmlCountAction, SoComplexityTypeElement);
  SO_ENABLE(VrmlCountAction, SoSwitchElement);
  SO_ENABLE(VrmlCountAction, VrmlContainerElement);
  addMethod(SoNode::getClassTypeId(), noCount);
  addMethod(SoGroup::getClassTypeId(), countGroup);
}

VrmlCountAction::VrmlCountAction() { SO_ACTION_CONSTRUCTOR(VrmlCountAction); }

VrmlCountAction::~VrmlCountAction() = default;

void VrmlCountAction::beginTraversal(SoNode* node) {
  numTriangles = numLineSegments = numPoints = 0;
  traverse(node);
}
