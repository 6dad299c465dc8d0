// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/proto/VrmlInline.h>

#include <Inventor/actions/SoActions.h>
#include <Inventor/misc/SoState.h>

#include <tessel/actions/VrmlCollideAction.h>
#include <tessel/actions/VrmlCountAction.h>
#include <tessel/actions/VrmlPreTraverseAction.h>
#include <tessel/core/VrmlDB.h>
#include <tessel/core/VrmlGroup.h>
#include <tessel/core/VrmlMFChildren.h>
#include <tessel/core/VrmlTransform.h>
#include <tessel/proto/VrmlProtoDict.h>
#include <tessel/shapes/VrmlColor.h>
#include <tessel/shapes/VrmlCoordinate.h>
#include <tessel/shapes/VrmlIndexedLineSet.h>
#include <tessel/shapes/VrmlShape.h>
#include <tessel/toolkit/Scoped.h>
#include <tessel/toolkit/SoRef.h>

#include "core/AsVrmlNode.h"
#include "core/NodeClassImpl.h"
#include "core/UrlNodes.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;
using tessel::SoRef;

SbColor VrmlInline::bboxColor;

namespace {

constexpr int firstOfWorld = 1;  // the child before it is the box

/// The edges of a cube of side 2, as the outlines of its faces.
SoRef<VrmlTransform> makeBox() {
  static constexpr float corners[8][3] = {{-1, -1, 1},  {1, -1, 1},  {1, 1, 1},  {-1, 1, 1},
                                          {-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {-1, 1, -1}};
  static constexpr std::int32_t faces[] = {0, 1, 2, 3, -1, 1, 5, 6, 2, -1, 5, 4, 7, 6, -1,
                                           4, 0, 3, 7, -1, 3, 2, 6, 7, -1, 5, 4, 0, 1, -1};
  static constexpr std::int32_t colors[6] = {};

  const SoRef<VrmlCoordinate> coordinate(new VrmlCoordinate);
  coordinate->point.setValues(0, 8, corners);
  const SoRef<VrmlColor> color(new VrmlColor);
  color->color.setValue(VrmlInline::bboxColor);
  const SoRef<VrmlIndexedLineSet> lines(new VrmlIndexedLineSet);
  lines->coord.setValue(coordinate.get());
  lines->coordIndex.setValues(0, 30, faces);
  lines->color.setValue(color.get());
  lines->colorIndex.setValues(0, 6, colors);
  lines->colorPerVertex.setValue(FALSE);
  const SoRef<VrmlShape> shape(new VrmlShape);
  shape->geometry.setValue(lines.get());
  SoRef<VrmlTransform> box(new VrmlTransform);
  box->addChild(shape.get());
  return box;
}

}  // namespace

std::span<const FieldSpec> VrmlInline::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlInline::url>("url", FieldKind::exposedField, {""}),
      fieldSpec<&VrmlInline::bboxCenter>("bboxCenter", FieldKind::field, {0, 0, 0}),
      fieldSpec<&VrmlInline::bboxSize>("bboxSize", FieldKind::field, {0, 0, 0}),
  };
  return table;
}

void VrmlInline::initClass() {
  NodeClass::initClass();
  bboxColor.setValue(0.8F, 0.8F, 0.8F);
  tessel::registerUrlNodes({getClassTypeId(), true, [](SoNode& node, bool request) {
                              auto& self = static_cast<VrmlInline&>(node);
                              if (self.childrenLoaded) return true;
                              if (request && !self.fetchRequested) self.requestChildrenFromURL();
                              return false;  // what has come at once may bring others that have not
                            }});
}

// Paths that end here must find the list that they told of themselves, so it is there from the start.
VrmlInline::VrmlInline() : children(std::make_unique<SoChildList>(this)), baseURL(VrmlDB::baseURL) {
  setUpFields();
}

VrmlInline::~VrmlInline() {
  children.reset();  // notifies, so while the other members are there
  setStackId(-1);
}

void VrmlInline::setStackId(int id) {
  if (stackId >= 0 && stackId != id) VrmlProtoDict::deleteStack(stackId);
  stackId = id;
}

// Asking and being answered.

bool VrmlInline::readBody(tessel::WorldReader& reader) {
  if (!NodeClass::readBody(reader)) return false;
  if (fetchOnRead && !fetchRequested) requestChildrenFromURL();
  return true;
}

void VrmlInline::requestChildrenFromURL() {
  if (!fetchURLcb) return;
  fetchRequested = true;
  const SbString wanted = getFullURLName();
  fetchURLcb(wanted, fetchURLdata, this);
}

const SbString& VrmlInline::getFullURLName() {
  url.evaluate();
  fullURL = tessel::fullURL(baseURL, url, urlIndex);
  if (fullURL == baseURL) fullURL = "";
  return fullURL;
}

void VrmlInline::fetchFailed() {
  if (urlIndex + 1 >= url.getNum()) return;
  ++urlIndex;
  requestChildrenFromURL();
}

void VrmlInline::setChildData(VrmlNode* node) {
  if (!node) return;
  const SoRef<VrmlNode> world(node);
  {
    const tessel::NotifyOff silence(static_cast<SoNode&>(*this));
    dropWorld();
    if (bboxSize.isDefault()) {
      SoGetBoundingBoxAction measure(SbViewportRegion{});
      measure.apply(node);
      const SbBox3f box = measure.getBoundingBox();
      if (box.isEmpty()) {
        addBoundingBoxChild(SbVec3f(0, 0, 0), SbVec3f(0, 0, 0));
      } else {
        const SbVec3f center = box.getCenter(), size = box.getSize();
        addBoundingBoxChild(center, size);
        bboxCenter = center;
        bboxSize = size;
      }
    } else {
      addBoundingBoxChild(bboxCenter.getValue(), bboxSize.getValue());
    }
    childrenLoaded = true;
    kidType = tessel::KidType::notComputed;
  }
  children->append(node);
}

VrmlNode* VrmlInline::getChildData() const {
  return childrenLoaded ? static_cast<VrmlNode*>((*children)[firstOfWorld]) : nullptr;
}

VrmlNode* VrmlInline::copyChildren() const {
  if (!childrenLoaded) return nullptr;
  const SoRef<VrmlGroup> original(new VrmlGroup);
  for (int i = firstOfWorld; i < children->getLength(); ++i)
    original->addChild(static_cast<VrmlNode*>((*children)[i]));
  return static_cast<VrmlNode*>(deepCopy(original.get(), TRUE));
}

void VrmlInline::copyContents(const SoFieldContainer* from, SbBool copyConnections) {
  NodeClass::copyContents(from, copyConnections);
  const auto* source = dynamic_cast<const VrmlInline*>(from);
  if (!source) return;
  baseURL = source->baseURL;
  const SoRef<VrmlNode> copy(source->copyChildren());
  if (!copy) return;
  auto* group = static_cast<VrmlGroup*>(copy.get());
  setChildData(group->getNumChildren() == 1 ? static_cast<VrmlNode*>(group->getChild(0)) : group);
}

// The box.

bool VrmlInline::hasGivenBox() const {
  const SbVec3f& size = bboxSize.getValue();
  return !bboxSize.isDefault() && size[0] >= 0 && size[1] >= 0 && size[2] >= 0;
}

void VrmlInline::addBoundingBoxChild(SbVec3f center, SbVec3f size) {
  if (children->getLength() == 0) children->append(makeBox().get());
  if (!(*children)[0]->isOfType(VrmlTransform::getClassTypeId())) return;
  auto* box = static_cast<VrmlTransform*>((*children)[0]);
  box->translation = center;
  box->scale = size / 2;
}

void VrmlInline::setShowBox(bool show) {
  if (showBox == show) return;
  showBox = show;
  startNotify();
}

void VrmlInline::dropWorld() {
  const SoRef<VrmlNode> world(getChildData());  // no destructor in the middle of a notification
  childrenLoaded = false;
  kidType = tessel::KidType::notComputed;
  if (children->getLength() > firstOfWorld) children->truncate(firstOfWorld);
}

// Traversal.

std::uint32_t VrmlInline::getKidType() {
  if (kidType == tessel::KidType::notComputed) {
    VrmlNode* world = getChildData();
    kidType = world ? world->getKidType() : 0;
  }
  return kidType;
}

void VrmlInline::traverseWorld(SoAction* action) {
  int numIndices = 0;
  const int* indices = nullptr;
  const bool inPath = action->getPathCode(numIndices, indices) == SoAction::IN_PATH;
  const int last = inPath ? indices[numIndices - 1] : children->getLength() - 1;
  if (last >= firstOfWorld) children->traverse(action, firstOfWorld, last);
}

void VrmlInline::doActionOnKidsOrBox(SoAction* action) {
  if (children->getLength() == 0 && hasGivenBox()) {
    // The box changes nothing that anybody has seen: whoever asks for it sees it now.
    const tessel::NotifyOff silence(static_cast<SoNode&>(*this));
    addBoundingBoxChild(bboxCenter.getValue(), bboxSize.getValue());
  }
  if (childrenLoaded && !showBox)
    traverseWorld(action);
  else if (children->getLength() > 0)
    children->traverse(action, 0);
}

void VrmlInline::doAction(SoAction* action) {
  if (childrenLoaded) traverseWorld(action);
}

void VrmlInline::callback(SoCallbackAction* action) { VrmlInline::doAction(action); }
void VrmlInline::handleEvent(SoHandleEventAction* action) { VrmlInline::doAction(action); }
void VrmlInline::collisionDetect(VrmlCollideAction* action) { VrmlInline::doAction(action); }
void VrmlInline::count(VrmlCountAction* action) { VrmlInline::doAction(action); }
void VrmlInline::pick(SoPickAction* action) { doActionOnKidsOrBox(action); }

void VrmlInline::doPreTraverse(VrmlPreTraverseAction* action) {
  if (!hasKidType(action->kidTypeMask)) return;
  const tessel::StateScope scope(action->getState());
  VrmlInline::doAction(action);
}

void VrmlInline::search(SoSearchAction* action) {
  SoNode::search(action);
  if (!action->isFound() && action->isSearchingAll()) VrmlInline::doAction(action);
}

void VrmlInline::GLRender(SoGLRenderAction* action) {
  if (!childrenLoaded && !fetchRequested) requestChildrenFromURL();
  doActionOnKidsOrBox(action);
}

void VrmlInline::GLRenderOffPath(SoGLRenderAction*) {}

void VrmlInline::getMatrix(SoGetMatrixAction* action) {
  int numIndices = 0;
  const int* indices = nullptr;
  if (childrenLoaded && action->getPathCode(numIndices, indices) == SoAction::IN_PATH)
    children->traverse(action, indices[numIndices - 1]);
}

void VrmlInline::getBoundingBox(SoGetBoundingBoxAction* action) {
  if (!childrenLoaded) {
    if (hasGivenBox()) {
      const SbVec3f center = bboxCenter.getValue(), half = bboxSize.getValue() / 2;
      action->extendBy(SbBox3f(center - half, center + half));
      action->setCenter(center, FALSE);
    } else if (!fetchRequested) {
      requestChildrenFromURL();
    }
    return;
  }
  int numIndices = 0;
  const int* indices = nullptr;
  const bool inPath = action->getPathCode(numIndices, indices) == SoAction::IN_PATH;
  const int first = inPath ? indices[numIndices - 1] : firstOfWorld;
  const int last = inPath ? first : children->getLength() - 1;
  SbVec3f sum(0, 0, 0);
  int centers = 0;
  for (int i = first; i <= last; ++i) {
    children->traverse(action, i);
    if (!action->isCenterSet()) continue;
    sum += action->getCenter();
    ++centers;
    action->resetCenter();
  }
  if (centers > 0) action->setCenter(sum / static_cast<float>(centers), FALSE);
}

// Notification.

void VrmlInline::notify(SoNotList* list) {
  bool worldLeft = false;
  const SoNotRec* record = list->getLastRec();
  if (isNotifyEnabled() && record &&
      (record->getType() == SoNotRec::CONTAINER || record->getType() == SoNotRec::PARENT)) {
    if (const SoField* field = list->getLastField()) {
      if (field->isOfType(VrmlMFChildren::getClassTypeId())) kidType = tessel::KidType::notComputed;
      if (field == &url) {
        worldLeft = childrenLoaded;
        urlIndex = 0;
        fetchRequested = false;
        const tessel::NotifyOff silence(static_cast<SoNode&>(*this));
        dropWorld();
      }
    } else if (const SoNotRec* first = list->getFirstRecAtNode()) {
      const VrmlNode* source = tessel::asVrmlNode(first->getBase());
      if (source && source->holdsChildren()) kidType = tessel::KidType::notComputed;
    }
  }
  VrmlNode::notify(list);
  if (worldLeft) startNotify();  // as when a world has come: the scene's structure is another
}

template class tessel::NodeClass<VrmlInline, VrmlNode>;
