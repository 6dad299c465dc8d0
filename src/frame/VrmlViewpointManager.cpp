// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/frame/VrmlViewpointManager.h>

#include <algorithm>

#include <Inventor/SbViewportRegion.h>
#include <Inventor/actions/SoGetMatrixAction.h>

#include <tessel/frame/VrmlSceneManager.h>
#include <tessel/frame/VrmlViewpoint.h>

using tessel::SoRef;

VrmlViewpointManager::VrmlViewpointManager()
    : getMatrixAction(std::make_unique<SoGetMatrixAction>(SbViewportRegion(1, 1))) {}

VrmlViewpointManager::~VrmlViewpointManager() { clearViewpoints(); }

void VrmlViewpointManager::setCameraCallback(CameraCallback* callback, void* data) {
  cameraCB = callback;
  cameraData = data;
}

void VrmlViewpointManager::addViewpoint(VrmlViewpoint* viewpoint) {
  if (listed.insert(viewpoint).second) viewpoints.emplace_back(viewpoint);
}

void VrmlViewpointManager::removeViewpoint(VrmlViewpoint* viewpoint) {
  const int index = indexOf(viewpoint);
  if (index < 0) return;
  listed.erase(viewpoint);
  viewpoint->setPath(nullptr);
  viewpoints.erase(viewpoints.begin() + index);
  if (currentIndex >= index) currentIndex = currentIndex == index ? -1 : currentIndex - 1;
}

void VrmlViewpointManager::clearViewpoints() {
  // A path holds the scene, and with it the viewpoints that hold the paths.
  for (const SoRef<VrmlViewpoint>& viewpoint : viewpoints) viewpoint->setPath(nullptr);
  listed.clear();
  viewpoints.clear();
  currentIndex = -1;
  matrix.makeIdentity();
}

VrmlViewpoint* VrmlViewpointManager::getViewpoint(int index) const {
  return index >= 0 && index < getNumViewpoints() ? viewpoints[static_cast<std::size_t>(index)].get()
                                                  : nullptr;
}

VrmlViewpoint* VrmlViewpointManager::getCurrViewpoint() const {
  if (!sceneManager) return nullptr;
  return static_cast<VrmlViewpoint*>(sceneManager->getCurrentBinding(VrmlViewpoint::getClassTypeId()));
}

VrmlViewpoint* VrmlViewpointManager::getNextViewpoint() { return described(1); }

VrmlViewpoint* VrmlViewpointManager::getPrevViewpoint() { return described(-1); }

VrmlViewpoint* VrmlViewpointManager::described(int direction) {
  VrmlViewpoint* const bound = getCurrViewpoint();
  checkCurrViewpoint(bound);
  const int count = getNumViewpoints();
  int index = currentIndex < 0 && direction < 0 ? 0 : currentIndex;
  for (int step = 0; step < count; ++step) {
    index = (index + direction + count) % count;
    VrmlViewpoint* const viewpoint = getViewpoint(index);
    if (viewpoint->description.getValue().getLength() > 0) return viewpoint;
  }
  return bound;
}

VrmlViewpoint* VrmlViewpointManager::getNamedViewpoint(const char* name) const {
  const SbName wanted(name ? name : "");
  for (const auto& nameOf : {+[](const VrmlViewpoint& v) { return SbName(v.getDefName()); },
                             +[](const VrmlViewpoint& v) { return v.getName(); }}) {
    const auto found = std::ranges::find_if(viewpoints, [&](const auto& v) { return nameOf(*v) == wanted; });
    if (wanted.getLength() > 0 && found != viewpoints.end()) return found->get();
  }
  return nullptr;
}

int VrmlViewpointManager::jumpToViewpoint(VrmlViewpoint* viewpoint) {
  const int index = indexOf(viewpoint);
  if (index < 0) return 0;
  currentIndex = index;
  const SoRef<VrmlViewpoint> alive(viewpoint);
  const bool jumps = viewpoint->jump.getValue();
  if (!jumps) viewpoint->jump.setValue(TRUE);
  viewpoint->set_bind.setValue(TRUE);
  if (!jumps) viewpoint->jump.setValue(FALSE);
  return 1;
}

int VrmlViewpointManager::indexOf(const VrmlViewpoint* viewpoint) const {
  const auto found = std::ranges::find(viewpoints, viewpoint, &SoRef<VrmlViewpoint>::get);
  return found == viewpoints.end() ? -1 : static_cast<int>(found - viewpoints.begin());
}

void VrmlViewpointManager::checkCurrViewpoint(VrmlViewpoint* viewpoint) {
  if (!viewpoint || getViewpoint(currentIndex) != viewpoint) currentIndex = indexOf(viewpoint);
}

void VrmlViewpointManager::takeMatrix(const VrmlViewpoint* viewpoint) {
  if (const SoPath* path = viewpoint ? viewpoint->getPath() : nullptr) {
    const SoRef<SoPath> alive(const_cast<SoPath*>(path));
    getMatrixAction->apply(alive.get());
    matrix = getMatrixAction->getMatrix();
  } else {
    matrix.makeIdentity();
  }
}

void VrmlViewpointManager::updateSceneCamera(VrmlViewpoint* viewpoint, int changeOfBinding, int jump) {
  if (!viewpoint) return;
  checkCurrViewpoint(viewpoint);
  takeMatrix(viewpoint);
  if (cameraCB)
    cameraCB(cameraData, matrix, jump ? jumpThere : changeOfBinding ? moved : keepPlace, viewpoint);
}
