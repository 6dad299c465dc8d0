// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/core/VrmlSFNode.h>

#include <utility>

#include <Inventor/nodes/SoNode.h>

#include "core/DeepCopy.h"
#include "core/HeldNodes.h"

SoType VrmlSFNode::classTypeId;
int VrmlSFNode::doFixCopy = 0;
SoNode* (*VrmlSFNode::actualNodeOf)(SoNode*) = nullptr;

void VrmlSFNode::initClass() {
  classTypeId = SoType::createType(SoSFNode::getClassTypeId(), "VrmlSFNode", &createInstance);
  classTypeId.makeInternal();
}

VrmlSFNode::VrmlSFNode() = default;
VrmlSFNode::~VrmlSFNode() = default;

SoType VrmlSFNode::getClassTypeId() { return classTypeId; }
SoType VrmlSFNode::getTypeId() const { return classTypeId; }
void* VrmlSFNode::createInstance() { return new VrmlSFNode; }

void VrmlSFNode::copyFrom(const SoField& source) {
  setValue(static_cast<const SoSFNode&>(source).getValue());
}

const VrmlSFNode& VrmlSFNode::operator=(const VrmlSFNode& source) {
  copyFrom(source);
  return *this;
}

SbBool VrmlSFNode::isSame(const SoField& other) const {
  return other.getTypeId() == getTypeId() && getValue() == static_cast<const VrmlSFNode&>(other).getValue();
}

SoNode* VrmlSFNode::getRealValue() const {
  SoNode* node = getValue();
  return node && actualNodeOf ? actualNodeOf(node) : node;
}

void VrmlSFNode::notify(SoNotList* list) {
  if (!tessel::endsAtField(*this, *list)) SoSFNode::notify(list);
}

void VrmlSFNode::fixCopy(SbBool copyConnections) {
  SoNode* original = doFixCopy ? getValue() : nullptr;
  if (!original) return;
  if (SoFieldContainer* copy = tessel::DeepCopy::findCopy(original, copyConnections))
    setValue(static_cast<SoNode*>(copy));
}

int VrmlSFNode::setFixCopy(int on) { return std::exchange(doFixCopy, on); }
void VrmlSFNode::setActualNodeHook(SoNode* (*hook)(SoNode*)) { actualNodeOf = hook; }
