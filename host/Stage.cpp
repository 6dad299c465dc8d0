// SPDX-License-Identifier: BSD-3-Clause
#include "Stage.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <vector>

#include <GL/gl.h>
#include <Inventor/SbViewportRegion.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <tessel/frame/VrmlViewpoint.h>

#include "Defaults.h"

namespace tessel::host {
namespace {

constexpr float smallestAngle = 1e-3f, largestAngle = 3.1f;  // of a field of view that can be drawn
constexpr float frameMargin = 1.05f;                         // room round a world that is framed as a whole

/// Sets a field if the value is new, for every set asks for another frame.
template <class Field, class Value> void update(Field& field, const Value& value) {
  if (field.getValue() != value) field = value;
}

}  // namespace

Stage::Stage(int width, int height)
    : camera(new VrmlTransformedCamera),
      headlight(new SoDirectionalLight),
      manager(std::make_unique<VrmlSceneManager>()) {
  camera->viewportMapping = SoCamera::ADJUST_CAMERA;
  manager->getGLRenderAction()->setTransparencyType(SoGLRenderAction::SORTED_OBJECT_BLEND);
  manager->setBackgroundColor(SbColor(0, 0, 0));
  manager->getViewpointManager()->setCameraCallback(cameraCB, this);
  manager->setRenderCallback(redrawCB, this);
  resize(width, height);
}

Stage::~Stage() { manager->setSceneGraph(nullptr); }

void Stage::setWorld(SoNode* newWorld) {
  world.reset(newWorld);
  boxId = 0;
  // A new root tells the manager that another world is here, so that its first Viewpoint and the like are
  // bound.
  SoRef<SoSeparator> root(new SoSeparator);
  // What lies below is cached where that makes sense; a cache round the camera never does.
  root->renderCaching = SoSeparator::OFF;
  root->boundingBoxCaching = SoSeparator::OFF;
  root->renderCulling = SoSeparator::OFF;
  root->pickCulling = SoSeparator::OFF;
  root->addChild(defaults().get());  // the background is drawn where the camera stands
  root->addChild(camera.get());
  root->addChild(headlight.get());
  if (newWorld) root->addChild(newWorld);
  manager->setSceneGraph(root.get());
  manager->setSceneCamera(camera.get());
}

void Stage::resize(int width, int height) {
  const SbVec2s size(static_cast<short>(width), static_cast<short>(height));
  manager->setWindowSize(size);
  manager->setSize(size);
  manager->setViewportRegion(SbViewportRegion(size));
}

void Stage::draw() {
  glEnable(GL_DEPTH_TEST);  // the toolkit relies on it and leaves it to the host
  followBindings();
  const VrmlNavigationInfo& info = navigationInfo();
  const float scale = frameScale();
  DepthNeeds needs;
  needs.world = boxInCameraSpace();
  needs.visibilityLimit = info.visibilityLimit.getValue() * scale;
  if (info.avatarSize.getNum() > 0) needs.avatarRadius = info.avatarSize[0] * scale;
  SbVec3f eye;
  camera->getRealPosition(eye);
  needs.uncertainty = eye.length() * std::numeric_limits<float>::epsilon();
  bool first = true;
  for (const DepthRange& slice : depthSlices(needs)) {
    update(camera->nearDistance, slice.nearest);
    update(camera->farDistance, slice.farthest);
    manager->render(first, TRUE);
    first = false;
  }
}

void Stage::skipDrawing() {
  manager->updateBindingNodes();
  followBindings();
}

/// Brings in line what the bound nodes may have changed since the last frame.
void Stage::followBindings() {
  const auto* viewpoint = manager->getViewpointManager()->getCurrViewpoint();
  if (viewpoint)
    update(camera->heightAngle, std::clamp(viewpoint->fieldOfView.getValue(), smallestAngle, largestAngle));

  const bool shines = headlightAllowed && navigationInfo().headlight.getValue();
  update(headlight->on, static_cast<SbBool>(shines));
  SbRotation orientation;
  camera->getRealOrientation(orientation);
  SbVec3f ahead;
  orientation.multVec(SbVec3f(0, 0, -1), ahead);
  update(headlight->direction, ahead);
}

const SbBox3f& Stage::worldBox() {
  if (!world) {
    box.makeEmpty();
  } else if (boxId != world->getNodeId()) {
    SoGetBoundingBoxAction bounds(manager->getViewportRegion());
    bounds.apply(withDefaults(world.get()).get());
    box = bounds.getBoundingBox();
    boxId = world->getNodeId();
  }
  return box;
}

SbBox3f Stage::boxInCameraSpace() {
  SbBox3f seen = worldBox();
  if (seen.isEmpty()) return seen;
  SbVec3f eye;
  SbRotation orientation;
  camera->getRealPosition(eye);
  camera->getRealOrientation(orientation);
  // The eye first, then the turn: far from the origin a matrix would lose the difference between the two.
  const SbBox3f nearEye(seen.getMin() - eye, seen.getMax() - eye);
  SbMatrix turn;
  turn.setRotate(orientation.inverse());
  SbBox3f turned = nearEye;
  turned.transform(turn);
  return turned;
}

const VrmlNavigationInfo& Stage::navigationInfo() const {
  return *static_cast<VrmlNavigationInfo*>(manager->getCurrentBinding(VrmlNavigationInfo::getClassTypeId()));
}

float Stage::frameScale() const {
  const float volume = std::abs(camera->matrix.getValue().det3());
  return volume > 0 ? std::cbrt(volume) : 1.0f;
}

int Stage::viewpointsInFile() const {
  return manager->getViewpointManager()->getNumViewpoints() - 1;  // the last one is the manager's default
}

int Stage::currentViewpoint() const {
  VrmlViewpointManager& list = *manager->getViewpointManager();
  for (int i = 0; i < viewpointsInFile(); ++i)
    if (list.getViewpoint(i) == list.getCurrViewpoint()) return i + 1;
  return 0;
}

bool Stage::showViewpoint(std::string_view wanted) {
  if (wanted == "all") {
    frameAll();
    return true;
  }
  std::vector<VrmlViewpoint*> inFile;
  VrmlViewpointManager& list = *manager->getViewpointManager();
  for (int i = 0; list.getViewpoint(i) && list.getViewpoint(i + 1); ++i)
    inFile.push_back(list.getViewpoint(i));

  const auto first = [&](auto matches) {
    const auto at = std::find_if(inFile.begin(), inFile.end(), matches);
    return at == inFile.end() ? nullptr : *at;
  };
  VrmlViewpoint* found = first([&](auto* v) { return wanted == v->getDefName().getString(); });
  if (!found) found = first([&](auto* v) { return wanted == v->description.getValue().getString(); });
  if (!found && wanted.starts_with('#')) {
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(wanted.data() + 1, wanted.data() + wanted.size(), number);
    const bool whole = error == std::errc() && end == wanted.data() + wanted.size();
    if (whole && number >= 1 && number <= inFile.size()) found = inFile[number - 1];
  }
  if (found) jumpTo(found);
  return found;
}

void Stage::jumpTo(VrmlViewpoint* viewpoint) {
  if (viewpoint) manager->getViewpointManager()->jumpToViewpoint(viewpoint);
}

void Stage::frameAll() {
  followBindings();
  SbBox3f whole = worldBox();
  if (!whole.isEmpty()) {
    const SbVec3f center = whole.getCenter(), half = whole.getSize() * (frameMargin / 2);
    whole.setBounds(center - half, center + half);
  }
  // The field of view spans the smaller side of the picture, as if the picture were square.
  camera->viewBoundingBox(whole, 1, 1);
}

Pose Stage::pose() const { return {camera->position.getValue(), camera->orientation.getValue()}; }

void Stage::setPose(const Pose& pose) {
  update(camera->position, pose.position);
  update(camera->orientation, pose.orientation);
}

SbVec3f Stage::pivot() {
  SbVec3f center(0, 0, 0);
  if (!worldBox().isEmpty())
    camera->matrix.getValue().inverse().multVecMatrix(worldBox().getCenter(), center);
  return center;
}

void Stage::describeTo(Navigation& navigation) {
  navigation.fieldOfView = camera->heightAngle.getValue();
  if (const SbBox3f& whole = worldBox(); !whole.isEmpty()) {
    const SbVec3f size = whole.getSize();
    navigation.sceneSize = std::max({size[0], size[1], size[2], 1e-30f}) / frameScale();
  }
  // A world that says nothing about speed is crossed in twenty seconds.
  const SoSFFloat& speed = navigationInfo().speed;
  navigation.speed = speed.isDefault() ? navigation.sceneSize / 20 : speed.getValue();
}

void Stage::cameraCB(void* self, const SbMatrix& matrix, int mode, VrmlViewpoint* viewpoint) {
  static_cast<Stage*>(self)->moveCamera(matrix, mode, *viewpoint);
}

void Stage::moveCamera(const SbMatrix& matrix, int mode, const VrmlViewpoint& viewpoint) {
  const SbVec3f position = viewpoint.position.getValue();
  const SbRotation orientation = viewpoint.orientation.getValue();
  if (mode == VrmlViewpointManager::keepPlace) {
    // The same place and direction in the world, told in the new frame.
    SbVec3f eye;
    SbRotation direction;
    camera->getRealPosition(eye);
    camera->getRealOrientation(direction);
    camera->matrix = matrix;
    matrix.inverse().multVecMatrix(eye, eye);
    camera->position = eye;
    camera->orientation = direction * camera->getMatrixRotation().inverse();
  } else {
    update(camera->matrix, matrix);
    // A Viewpoint bound again gives the viewer back the distance from it that it had when it was unbound; one
    // that moves carries the viewer along.
    const bool jump = mode == VrmlViewpointManager::jumpThere;
    const SbVec3f away = jump ? viewpoint.getOffsetPosition() : camera->position.getValue() - lastPosition;
    const SbRotation turned =
        jump ? viewpoint.getOffsetOrientation() : camera->orientation.getValue() * lastOrientation.inverse();
    update(camera->position, position + away);
    update(camera->orientation, turned * orientation);
  }
  lastPosition = position;
  lastOrientation = orientation;
}

void Stage::redrawCB(void* self, SoSceneManager*) {
  if (const auto& callback = static_cast<Stage*>(self)->changed) callback();
}

}  // namespace tessel::host
