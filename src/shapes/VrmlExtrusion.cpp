// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlExtrusion.h>

#include <algorithm>

#include <Inventor/SbViewportRegion.h>
#include <Inventor/SbXfBox3f.h>
#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/actions/SoGetMatrixAction.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/actions/SoSearchAction.h>
#include <Inventor/elements/SoViewportRegionElement.h>
#include <Inventor/misc/SoChildList.h>
#include <Inventor/misc/SoNotification.h>
#include <Inventor/misc/SoState.h>
#include <Inventor/nodes/SoSeparator.h>

#include <tessel/actions/VrmlCollideAction.h>
#include <tessel/actions/VrmlCountAction.h>
#include <tessel/shapes/VrmlIndexedFaceSet.h>
#include <tessel/toolkit/Scoped.h>
#include <tessel/toolkit/VrmlContainerElement.h>

#include "core/NodeClassImpl.h"
#include "shapes/ExtrusionSurface.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlExtrusion::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlExtrusion::crossSection>("crossSection", FieldKind::field),
      fieldSpec<&VrmlExtrusion::orientation>("orientation", FieldKind::field),
      fieldSpec<&VrmlExtrusion::scale>("scale", FieldKind::field),
      fieldSpec<&VrmlExtrusion::spine>("spine", FieldKind::field),
      fieldSpec<&VrmlExtrusion::beginCap>("beginCap", FieldKind::field, {true}),
      fieldSpec<&VrmlExtrusion::endCap>("endCap", FieldKind::field, {true}),
      fieldSpec<&VrmlExtrusion::ccw>("ccw", FieldKind::field, {true}),
      fieldSpec<&VrmlExtrusion::solid>("solid", FieldKind::field, {true}),
      fieldSpec<&VrmlExtrusion::convex>("convex", FieldKind::field, {true}),
      fieldSpec<&VrmlExtrusion::creaseAngle>("creaseAngle", FieldKind::field, {0}),
      fieldSpec<&VrmlExtrusion::set_crossSection>("set_crossSection", FieldKind::eventIn),
      fieldSpec<&VrmlExtrusion::set_orientation>("set_orientation", FieldKind::eventIn),
      fieldSpec<&VrmlExtrusion::set_scale>("set_scale", FieldKind::eventIn),
      fieldSpec<&VrmlExtrusion::set_spine>("set_spine", FieldKind::eventIn),
  };
  return table;
}

namespace {

// A list is the default of a field and of the event that replaces its value.
template <class Field, class Value, std::size_t n>
void setDefaultList(Field& field, Field& event, const Value (&values)[n]) {
  for (Field* f : {&field, &event}) {
    f->setValues(0, static_cast<int>(n), values);
    f->setDefault(TRUE);
  }
}

}  // namespace

VrmlExtrusion::VrmlExtrusion() : sensor(fieldsChangedCB, this) {
  setUpFields();
  const SbVec2f square[] = {{1, 1}, {1, -1}, {-1, -1}, {-1, 1}, {1, 1}};
  const SbRotation unturned[] = {SbRotation::identity(), SbRotation::identity()};
  const SbVec2f unscaled[] = {{1, 1}, {1, 1}};
  const SbVec3f upwards[] = {{0, 0, 0}, {0, 1, 0}};
  setDefaultList(crossSection, set_crossSection, square);
  setDefaultList(orientation, set_orientation, unturned);
  setDefaultList(scale, set_scale, unscaled);
  setDefaultList(spine, set_spine, upwards);
  sensor.setPriority(0);
  sensor.unschedule();
  surface = std::make_unique<tessel::ExtrusionSurface>(*this);
  children = std::make_unique<SoChildList>(this, 1);
  children->append(surface->root.get());
  updateSurface();
}

VrmlExtrusion::~VrmlExtrusion() = default;

SoChildList* VrmlExtrusion::getChildren() const { return children.get(); }

// The surface

void VrmlExtrusion::updateSurface() {
  sensor.unschedule();
  isStale = false;
  surface->update();
  updateCallbacks.invokeCallbacks(this);
}

void VrmlExtrusion::addUpdateSurfaceCallback(SoCallbackListCB* callback, void* data) {
  updateCallbacks.addCallback(callback, data);
}

void VrmlExtrusion::removeUpdateSurfaceCallback(SoCallbackListCB* callback, void* data) {
  updateCallbacks.removeCallback(callback, data);
}

bool VrmlExtrusion::readBody(tessel::WorldReader& reader) {
  if (!NodeClass::readBody(reader)) return false;
  correctScale();
  updateSurface();
  return true;
}

void VrmlExtrusion::copyContents(const SoFieldContainer* from, SbBool copyConnections) {
  NodeClass::copyContents(from, copyConnections);
  updateSurface();
}

void VrmlExtrusion::notify(SoNotList* list) {
  const SoField* changed = list->getLastField();
  if (surface && changed && changed->getContainer() == this) {
    mirror(list, crossSection, set_crossSection);
    mirror(list, orientation, set_orientation);
    mirror(list, scale, set_scale);
    mirror(list, spine, set_spine);
    if (isNotifyEnabled()) sensor.schedule();
  }
  NodeClass::notify(list);
}

// An instance of a prototype gets its values so, one by one.
void VrmlExtrusion::notifyContainerOnly(const SoField*) { isStale = true; }

void VrmlExtrusion::sync() {
  if (!isStale) return;
  const tessel::NotifyOff<VrmlExtrusion> quiet(*this);
  correctScale();
  updateSurface();
}

void VrmlExtrusion::fieldsChangedCB(void* self, SoSensor*) {
  auto* const node = static_cast<VrmlExtrusion*>(self);
  node->correctScale();
  node->updateSurface();
}

void VrmlExtrusion::correctScale() {
  const auto isNegative = [](const SbVec2f& v) { return v[0] < 0 || v[1] < 0; };
  for (SoMFVec2f* field : {&scale, &set_scale}) {
    const SbVec2f* values = field->getValues(0);
    if (std::none_of(values, values + field->getNum(), isNegative)) continue;
    const tessel::NotifyOff<SoMFVec2f> quiet(*field);
    SbVec2f* const value = field->startEditing();
    for (int i = 0; i < field->getNum(); ++i)
      value[i].setValue(std::max(value[i][0], 0.0f), std::max(value[i][1], 0.0f));
    field->finishEditing();
  }
}

void VrmlExtrusion::createSpineDistanceArray(int& count, std::unique_ptr<float[]>& array) const {
  count = spine.getNum();
  array.reset(count > 0 ? new float[static_cast<std::size_t>(count)] : nullptr);
  float length = 0;
  for (int i = 0; i < count; ++i) {
    if (i > 0) length += (spine[i] - spine[i - 1]).length();
    array[static_cast<std::size_t>(i)] = length;
  }
}

// Actions go to the face sets.

void VrmlExtrusion::doAction(SoAction* action) {
  sync();
  const tessel::StateScope scope(action->getState());
  children->traverse(action, 0, children->getLength() - 1);
}

// Delayed and replaced by a box as a whole.
void VrmlExtrusion::GLRender(SoGLRenderAction* action) {
  if (shouldGLRender(action)) doAction(action);
}

void VrmlExtrusion::callback(SoCallbackAction* action) { doAction(action); }
void VrmlExtrusion::getBoundingBox(SoGetBoundingBoxAction* action) { doAction(action); }
void VrmlExtrusion::getMatrix(SoGetMatrixAction* action) { doAction(action); }
void VrmlExtrusion::handleEvent(SoHandleEventAction*) {}
void VrmlExtrusion::pick(SoPickAction* action) { doAction(action); }
void VrmlExtrusion::rayPick(SoRayPickAction* action) { doAction(action); }
void VrmlExtrusion::generatePrimitives(SoAction* action) { doAction(action); }

void VrmlExtrusion::search(SoSearchAction* action) {
  SoNode::search(action);
  if (searchingChildren && !action->isFound()) doAction(action);
}

void VrmlExtrusion::collisionDetect(VrmlCollideAction* action) {
  sync();
  const tessel::StateScope scope(action->getState());
  VrmlContainerElement::enter(action->getState(), this, VrmlContainerElement::shape);
  for (const auto* faces : {&surface->sideFaces, &surface->beginFaces, &surface->endFaces})
    if (*faces) (*faces)->collisionDetect(action);
}

void VrmlExtrusion::count(VrmlCountAction* action) {
  const std::int64_t along = std::max(2 * std::int64_t{spine.getNum()} - 2, std::int64_t{0});
  const std::int64_t around = std::max(crossSection.getNum() - 1, 0);
  const std::int64_t rows = along + (beginCap.getValue() ? 1 : 0) + (endCap.getValue() ? 1 : 0);
  VrmlCountAction::add(action->numTriangles, rows * around);
}

void VrmlExtrusion::computeBBox(SoAction* action, SbBox3f& box, SbVec3f& center) {
  sync();
  // Never destroyed, since the toolkit may be gone before static objects are.
  static auto* const bboxAction = new SoGetBoundingBoxAction(SbViewportRegion());
  bboxAction->setViewportRegion(SoViewportRegionElement::get(action->getState()));
  const int before = VrmlContainerElement::setDefault(VrmlContainerElement::shape);
  bboxAction->apply(surface->root.get());
  VrmlContainerElement::setDefault(before);
  box = bboxAction->getXfBoundingBox().project();
  center = bboxAction->getCenter();
}

template class tessel::NodeClass<VrmlExtrusion, VrmlGeometry>;
