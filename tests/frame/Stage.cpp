// SPDX-License-Identifier: BSD-3-Clause
#include "frame/Stage.h"

namespace tessel::test {

Stage::Stage(const char* text) : world(text), camera(new VrmlTransformedCamera), ear(&listen, this) {
  manager.getViewpointManager()->setCameraCallback(
      [](void* data, const SbMatrix& matrix, int mode, VrmlViewpoint* viewpoint) {
        auto* self = static_cast<Stage*>(data);
        self->cameraCalls.push_back({mode, SbVec3f(matrix[3]), viewpoint});
        self->camera->matrix.setValue(matrix);
      },
      this);
  show(world.root());
}

Stage::~Stage() { ear.detach(); }

void Stage::show(SoNode* tree) {
  root.reset(new SoSeparator);
  root->addChild(camera.get());
  if (tree) root->addChild(tree);
  ear.attach(root.get());
  manager.setSceneGraph(root.get());
  manager.setSceneCamera(camera.get());
}

std::string Stage::nameOf(const SoNode* node) {
  return node && node->getName().getLength() > 0 ? node->getName().getString() : "-";
}

std::string Stage::takeBindEvents() {
  std::string all;
  for (const std::string& event : std::exchange(bindEvents, {})) all += (all.empty() ? "" : " ") + event;
  return all;
}

void Stage::listen(void* data, SoSensor* sensor) {
  auto* self = static_cast<Stage*>(data);
  const SoField* field = static_cast<VrmlNotifySensor*>(sensor)->getTriggerField();
  if (!field || !field->getContainer()->isOfType(VrmlBindingNode::getClassTypeId())) return;
  auto* node = static_cast<VrmlBindingNode*>(field->getContainer());
  if (field != &node->isBound) return;
  const std::string event = nameOf(node) + (node->isBound.getValue() ? ":1" : ":0");
  if (self->bindEvents.empty() || self->bindEvents.back() != event) self->bindEvents.push_back(event);
}

}  // namespace tessel::test
