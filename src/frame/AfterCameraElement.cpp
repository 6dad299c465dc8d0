// SPDX-License-Identifier: BSD-3-Clause
#include "frame/AfterCameraElement.h"

#include <tessel/actions/VrmlRenderAction.h>
#include <tessel/frame/VrmlSceneManager.h>

namespace tessel {

SO_ELEMENT_SOURCE(AfterCameraElement);

void AfterCameraElement::initClass() {
  SO_ELEMENT_INIT_CLASS(AfterCameraElement, inherited);
  VrmlRenderAction::enableElement(getClassTypeId(), getClassStackIndex());
}

AfterCameraElement::~AfterCameraElement() = default;

void AfterCameraElement::setElt(float distance) {
  inherited::setElt(distance);
  if (const VrmlSceneManager* manager = VrmlSceneManager::getActiveSceneManager())
    VrmlSceneManager::cameraPostRender(manager->getRunningAction());
}

}  // namespace tessel
