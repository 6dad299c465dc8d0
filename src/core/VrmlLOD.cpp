// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/core/VrmlLOD.h>

#include <algorithm>
#include <iterator>

#include <Inventor/SoFullPath.h>
#include <Inventor/actions/SoActions.h>
#include <Inventor/elements/SoCacheElement.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/elements/SoLazyElement.h>
#include <Inventor/elements/SoModelMatrixElement.h>
#include <Inventor/elements/SoOverrideElement.h>
#include <Inventor/elements/SoViewVolumeElement.h>
#include <Inventor/misc/SoState.h>

#include <tessel/actions/VrmlCollideAction.h>
#include <tessel/actions/VrmlCountAction.h>
#include <tessel/actions/VrmlPreTraverseAction.h>
#include <tessel/toolkit/Scoped.h>
#include <tessel/toolkit/SoRef.h>

#include "core/NodeClassImpl.h"
#include "core/UrlNodes.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlLOD::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlLOD::center>("center", FieldKind::field, {0, 0, 0}),
      fieldSpec<&VrmlLOD::range>("range", FieldKind::field),
      fieldSpec<&VrmlLOD::level>("level", FieldKind::exposedField),
  };
  return table;
}

namespace {

bool bringsNodes(const SoNode& node) {
  return std::ranges::any_of(tessel::urlNodeClasses(), [&](const tessel::UrlNodeClass& nodes) {
    return nodes.bringsNodes && node.isOfType(nodes.type);
  });
}

}  // namespace

float VrmlLOD::stressFactor = 1;
int VrmlLOD::showLowestLODOnly = 0;
int VrmlLOD::isDegrading = 0;
int VrmlLOD::debugMode = 0;

VrmlLOD::VrmlLOD() { init(); }

VrmlLOD::VrmlLOD(int expectedChildren) : NodeClass(expectedChildren) { init(); }

VrmlLOD::~VrmlLOD() = default;

void VrmlLOD::init() {
  setUpFields();
  level.setValue(childList.get());  // no longer the default: a file always gets it
}

void VrmlLOD::childrenChanged() { level.touch(); }

// Choosing

void VrmlLOD::setLevel(int newLevel) {
  if (autoLevel || newLevel == currentLevel) return;
  currentLevel = newLevel;
  startNotify();
}

int VrmlLOD::levelFor(const SbVec3f& eye) const {
  const int last = getNumChildren() - 1;
  const int limit = std::min(last, range.getNum());
  const float distance = (center.getValue() - eye).sqrLength();
  int i = showLowestLODOnly ? last : 0;
  for (; i < limit; ++i) {
    const float border = range[i] * stressFactor;
    if (distance < border * border) break;
  }
  return std::min(i, last);
}

int VrmlLOD::whichToTraverse(SoAction* action) {
  if (!autoLevel) return currentLevel;
  SoState* state = action->getState();
  SbVec3f eye;
  SoModelMatrixElement::get(state).inverse().multVecMatrix(
      SoViewVolumeElement::get(state).getProjectionPoint(), eye);
  return levelFor(eye);
}

int VrmlLOD::whichToCollide(VrmlCollideAction* action) {
  if (!autoLevel) return currentLevel;
  SbVec3f eye = (action->proximityLineStart + action->proximityLineEnd) / 2;
  SoModelMatrixElement::get(action->getState()).inverse().multVecMatrix(eye, eye);
  return levelFor(eye);
}

bool& VrmlLOD::fetchedFlag(int levelIndex) {
  if (!fetchedLevels) fetchedLevels = std::make_unique<std::deque<bool>>();
  const std::size_t needed = static_cast<std::size_t>(std::max(levelIndex + 1, getNumChildren()));
  if (fetchedLevels->size() < needed) fetchedLevels->resize(needed, false);
  return (*fetchedLevels)[static_cast<std::size_t>(levelIndex)];
}

bool VrmlLOD::isURLDataFetched(int levelIndex, bool request) {
  if (levelIndex < 0 || levelIndex >= getNumChildren()) return false;
  if (fetchedFlag(levelIndex)) return true;
  const tessel::SoRef<SoNode> child((*childList)[levelIndex]);  // a host that is asked may take it away
  bool fetched = true;
  for (const tessel::UrlNodeClass& nodes : tessel::urlNodeClasses()) {
    SoSearchAction search;
    search.setType(nodes.type);
    search.setInterest(SoSearchAction::ALL);
    search.setSearchingAll(TRUE);
    search.apply(child.get());
    const SoPathList& found = search.getPaths();
    for (int i = 0; i < found.getLength(); ++i)
      if (!nodes.isFetched(*static_cast<const SoFullPath*>(found[i])->getTail(), request)) fetched = false;
  }
  // What was asked for may have come at once, and may have changed the children.
  fetchedFlag(levelIndex) = fetched;
  return fetched;
}

/// The level that stands in for one whose data are missing.
int VrmlLOD::firstFetchedFrom(int wanted) {
  for (int i = wanted; i < getNumChildren(); ++i)
    if (isURLDataFetched(i, false)) return i;
  return getNumChildren() - 1;
}

// Traversal

void VrmlLOD::traverseLevel(SoAction* action, int wanted) {
  if (wanted >= getNumChildren()) return;
  const int taken =
      isURLDataFetched(wanted, !isDegrading) ? wanted : firstFetchedFrom(std::max(wanted + 1, 0));
  if (taken >= 0) doTraversal(action, taken);
}

void VrmlLOD::doAction(SoAction* action) {
  if (action->getCurPathCode() == SoAction::IN_PATH) {
    VrmlBaseGroup::doAction(action);
    return;
  }
  if (getNumChildren() == 0) return;
  // The coarsest level is asked for first: it stands in for all others.
  if (!fetchedLevels && bringsNodes(*(*childList)[getNumChildren() - 1]))
    isURLDataFetched(getNumChildren() - 1, true);
  const int wanted = whichToTraverse(action);
  if (action->isOfType(SoGLRenderAction::getClassTypeId())) {
    // The viewer decides, anew in each frame.
    SoCacheElement::invalidate(action->getState());
    SoGLCacheContextElement::shouldAutoCache(action->getState(), SoGLCacheContextElement::DONT_AUTO_CACHE);
  }
  traverseLevel(action, wanted);
}

void VrmlLOD::doTraversal(SoAction* action, int levelIndex) {
  const bool draws = action->isOfType(SoGLRenderAction::getClassTypeId());
  const bool colors = draws && debugMode;
  if (colors) {
    action->getState()->push();
    if (levelIndex != currentLevel) startNotify();
    setDebugColors(action->getState(), levelIndex);
  }
  childList->traverse(action, levelIndex, levelIndex);
  if (!draws) return;
  currentLevel = levelIndex;
  if (colors) action->getState()->pop();
  if (renderedCB) renderedCB(renderedData, this);
}

void VrmlLOD::setDebugColors(SoState* state, int levelIndex) {
  static const SbColor diffuse[] = {{1, 0, 0},    {1, 0.5F, 0}, {1, 1, 0},       {0, 1, 0},
                                    {0, 0.5F, 1}, {0, 0, 1},    {0.25F, 0, 0.5F}};
  constexpr float dark = 0.2F;  // the share of the ambient and specular colours
  const SbColor& color = diffuse[levelIndex % static_cast<int>(std::size(diffuse))];
  const SbColor darker(color[0] * dark, color[1] * dark, color[2] * dark);
  using Override = SoOverrideElement;
  SoLazyElement::setAmbient(state, &darker);
  Override::setAmbientColorOverride(state, this, TRUE);
  static SoColorPacker packer;
  SoLazyElement::setDiffuse(state, this, 1, &color, &packer);
  Override::setDiffuseColorOverride(state, this, TRUE);
  SoLazyElement::setSpecular(state, &darker);
  Override::setSpecularColorOverride(state, this, TRUE);
}

// Whoever walks the whole world sees all levels.
void VrmlLOD::callback(SoCallbackAction* action) { VrmlBaseGroup::doAction(action); }
void VrmlLOD::rayPick(SoRayPickAction* action) { doAction(action); }

void VrmlLOD::doPreTraverse(VrmlPreTraverseAction* action) {
  if (hasKidType(action->kidTypeMask)) doAction(action);
}

void VrmlLOD::collisionDetect(VrmlCollideAction* action) {
  if (action->getCurPathCode() == SoAction::IN_PATH)
    VrmlBaseGroup::doAction(action);
  else if (getNumChildren() > 0)
    traverseLevel(action, whichToCollide(action));
}

void VrmlLOD::count(VrmlCountAction* action) {
  if (action->getCurPathCode() == SoAction::IN_PATH) {
    VrmlBaseGroup::doAction(action);
    return;
  }
  const int choices[] = {currentLevel, 0, getNumChildren() - 1};
  const int index = choices[std::clamp(action->lodMode, 0, 2)];
  if (index < 0 || index >= getNumChildren()) return;
  const tessel::StateScope scope(action->getState());
  childList->traverse(action, index, index);
}

void VrmlLOD::getBoundingBox(SoGetBoundingBoxAction* action) {
  int numIndices = 0;
  const int* indices = nullptr;
  const bool onPath = action->getPathCode(numIndices, indices) == SoAction::IN_PATH;
  const int last = onPath ? indices[numIndices - 1] : getNumChildren() - 1;
  SbVec3f sum(0, 0, 0);
  int centers = 0, missing = -1;
  for (int i = last; i >= 0; --i) {
    if (isURLDataFetched(i, false))
      centers += extendByChildren(action, {&i, 1}, sum);
    else if (missing < 0)
      missing = i;
  }
  if (missing >= 0 && action->getXfBoundingBox().isEmpty())
    centers += extendByChildren(action, {&missing, 1}, sum);
  if (centers > 0) action->setCenter(sum / static_cast<float>(centers), FALSE);
}

// Rendering

void VrmlLOD::GLRenderBelowPath(SoGLRenderAction* action) { doAction(action); }

void VrmlLOD::GLRenderInPath(SoGLRenderAction* action) {
  int numIndices = 0;
  const int* indices = nullptr;
  const SoAction::PathCode code = action->getPathCode(numIndices, indices);
  if (code == SoAction::BELOW_PATH) GLRenderBelowPath(action);
  if (code != SoAction::IN_PATH) return;
  for (int i = 0; i < numIndices && !action->hasTerminated(); ++i) {
    if (!fetchedFlag(indices[i])) continue;
    SoNode* child = (*childList)[indices[i]];
    if (debugMode) {
      action->getState()->push();
      setDebugColors(action->getState(), indices[i]);
    }
    action->pushCurPath(indices[i], child);
    child->GLRenderInPath(action);
    action->popCurPath(code);
    if (debugMode) action->getState()->pop();
  }
}

template class tessel::NodeClass<VrmlLOD, VrmlBaseGroup>;
