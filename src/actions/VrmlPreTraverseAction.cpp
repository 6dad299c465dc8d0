// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/actions/VrmlPreTraverseAction.h>

#include <algorithm>

#include <Inventor/elements/SoComplexityElement.h>
#include <Inventor/elements/SoComplexityTypeElement.h>
#include <Inventor/elements/SoCoordinateElement.h>
#include <Inventor/elements/SoModelMatrixElement.h>
#include <Inventor/elements/SoNormalBindingElement.h>
#include <Inventor/elements/SoNormalElement.h>
#include <Inventor/elements/SoProjectionMatrixElement.h>
#include <Inventor/elements/SoShapeHintsElement.h>
#include <Inventor/elements/SoShapeStyleElement.h>
#include <Inventor/elements/SoSwitchElement.h>
#include <Inventor/elements/SoViewVolumeElement.h>
#include <Inventor/elements/SoViewingMatrixElement.h>
#include <Inventor/elements/SoViewportRegionElement.h>
#include <Inventor/manips/SoTransformManip.h>
#include <Inventor/nodes/SoCamera.h>
#include <Inventor/nodes/SoGroup.h>
#include <Inventor/nodes/SoTransformation.h>

#include <tessel/shapes/VrmlLight.h>
#include <tessel/sound/VrmlSound.h>
#include <tessel/toolkit/VrmlContainerElement.h>

SO_ACTION_SOURCE(VrmlPreTraverseAction);

namespace {

void noAction(SoAction*, SoNode*) {}
void callDoAction(SoAction* action, SoNode* node) { node->doAction(action); }
/// A manipulator acts as the transform that it is.
void callManipAction(SoAction* action, SoNode* node) {
  static_cast<SoTransformManip*>(node)->SoTransform::doAction(action);
}

}  // namespace

void VrmlPreTraverseAction::initClass() {
  SO_ACTION_INIT_CLASS(VrmlPreTraverseAction, SoAction);
  SO_ENABLE(VrmlPreTraverseAction, SoCoordinateElement);
  SO_ENABLE(VrmlPreTraverseAction, SoModelMatrixElement);
  SO_ENABLE(VrmlPreTraverseAction, SoComplexityElement);
  SO_ENABLE(VrmlPreTraverseAction, SoComplexityTypeElement);
  SO_ENABLE(VrmlPreTraverseAction, SoNormalBindingElement);
  SO_ENABLE(VrmlPreTraverseAction, SoNormalElement);
  SO_ENABLE(VrmlPreTraverseAction, SoProjectionMatrixElement);
  SO_ENABLE(VrmlPreTraverseAction, SoShapeHintsElement);
  SO_ENABLE(VrmlPreTraverseAction, SoShapeStyleElement);
  SO_ENABLE(VrmlPreTraverseAction, SoSwitchElement);
  SO_ENABLE(VrmlPreTraverseAction, SoViewVolumeElement);
  SO_ENABLE(VrmlPreTraverseAction, SoViewingMatrixElement);
  SO_ENABLE(VrmlPreTraverseAction, SoViewportRegionElement);
  SO_ENABLE(VrmlPreTraverseAction, VrmlContainerElement);
  addMethod(SoNode::getClassTypeId(), noAction);
  for (const SoType type :
       {SoCamera::getClassTypeId(), SoGroup::getClassTypeId(), SoTransformation::getClassTypeId()})
    addMethod(type, callDoAction);
  if (SoTransformManip::getClassTypeId() == SoType::badType()) SoTransformManip::initClass();
  addMethod(SoTransformManip::getClassTypeId(), callManipAction);
}

VrmlPreTraverseAction::VrmlPreTraverseAction() { SO_ACTION_CONSTRUCTOR(VrmlPreTraverseAction); }

VrmlPreTraverseAction::~VrmlPreTraverseAction() = default;

void VrmlPreTraverseAction::addLight(VrmlLight* light) { lights.emplace_back(light); }

void VrmlPreTraverseAction::addSound(VrmlSound* sound) {
  const auto known = std::find_if(sounds.begin(), sounds.end(),
                                  [sound](const LiveSound& live) { return live.sound.get() == sound; });
  if (known == sounds.end())
    sounds.push_back({tessel::SoRef<VrmlSound>(sound), false});
  else
    known->dirty = false;
}

void VrmlPreTraverseAction::beginTraversal(SoNode* node) {
  lights.clear();
  for (LiveSound& live : sounds) live.dirty = true;
  traverse(node);
  // The last first, as they were found.
  for (std::size_t i = sounds.size(); i-- > 0;) {
    if (!sounds[i].dirty) continue;
    sounds[i].sound->silenceSound();
    sounds.erase(sounds.begin() + static_cast<std::ptrdiff_t>(i));
  }
}
