// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/core/VrmlMFChildren.h>

#include <vector>

#include <Inventor/SoOutput.h>
#include <Inventor/errors/SoDebugError.h>
#include <Inventor/fields/SoMFNode.h>
#include <Inventor/misc/SoChildList.h>
#include <Inventor/nodes/SoNode.h>

#include <tessel/core/VrmlBaseGroup.h>
#include <tessel/core/VrmlNULL.h>
#include <tessel/toolkit/Scoped.h>
#include <tessel/toolkit/SoRef.h>

SoType VrmlMFChildren::classTypeId;

namespace {

// What a node is in the child list: itself, a VrmlNULL for none; null for what can't be a child.
VrmlNode* asChild(SoNode* node) { return node ? dynamic_cast<VrmlNode*>(node) : new VrmlNULL; }

VrmlBaseGroup* groupOf(const SoField& field) { return dynamic_cast<VrmlBaseGroup*>(field.getContainer()); }

}  // namespace

void VrmlMFChildren::initClass() {
  classTypeId = SoType::createType(SoSField::getClassTypeId(), "XXXX_MFChildren_XXXX", &createInstance);
  classTypeId.makeInternal();
}

VrmlMFChildren::VrmlMFChildren() : value(nullptr) {}
VrmlMFChildren::~VrmlMFChildren() = default;

SoType VrmlMFChildren::getClassTypeId() { return classTypeId; }
SoType VrmlMFChildren::getTypeId() const { return classTypeId; }
void* VrmlMFChildren::createInstance() { return new VrmlMFChildren; }

void VrmlMFChildren::setValue(SoChildList* list) {
  value = list;
  valueChanged();
}

int VrmlMFChildren::operator==(const VrmlMFChildren& other) const { return getValue() == other.getValue(); }

SbBool VrmlMFChildren::isSame(const SoField& other) const {
  return other.getTypeId() == getTypeId() && *this == static_cast<const VrmlMFChildren&>(other);
}

const VrmlMFChildren& VrmlMFChildren::operator=(const VrmlMFChildren& source) {
  copyFrom(source);
  return *this;
}

void VrmlMFChildren::copyFrom(const SoField& source) {
  std::vector<SoNode*> nodes;
  if (source.isOfType(getClassTypeId())) {
    if (const SoChildList* list = static_cast<const VrmlMFChildren&>(source).getValue())
      for (int i = 0; i < list->getLength(); ++i) nodes.push_back((*list)[i]);
  } else if (source.isOfType(SoMFNode::getClassTypeId())) {
    const auto& values = static_cast<const SoMFNode&>(source);
    for (int i = 0; i < values.getNum(); ++i) nodes.push_back(values[i]);
  }
  setChildren(nodes);
}

bool VrmlMFChildren::holds(std::span<SoNode* const> nodes) const {
  if (static_cast<std::size_t>(value->getLength()) != nodes.size()) return false;
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    SoNode* child = (*value)[static_cast<int>(i)];
    if (nodes[i] ? nodes[i] != child : !child->isOfType(VrmlNULL::getClassTypeId())) return false;
  }
  return true;
}

void VrmlMFChildren::setChildren(std::span<SoNode* const> nodes) {
  if (!value) return;
  if (!holds(nodes)) {
    std::vector<tessel::SoRef<VrmlNode>> wanted;
    wanted.reserve(nodes.size());
    VrmlBaseGroup* const group = groupOf(*this);
    for (SoNode* node : nodes)
      if (VrmlNode* child = node && group ? group->acceptableChild(node) : asChild(node))
        wanted.emplace_back(child);

    const tessel::NotifyOff silence(*this);
    if (group) {
      group->removeAllChildren();
      for (const auto& child : wanted) group->addChild(child.get());
    } else {
      value->truncate(0);
      for (const auto& child : wanted) value->append(child.get());
    }
  }
  valueChanged();
}

void VrmlMFChildren::notify(SoNotList* list) {
  const bool connectionFired = list->getLastRec() != nullptr && isConnected() && isConnectionEnabled();
  if (connectionFired) {
    setDirty(TRUE);
    evaluate();
  }
  inherited::notify(list);
  if (connectionFired) setDirty(FALSE);
}

void VrmlMFChildren::fixCopy(SbBool copyConnections) {
  VrmlBaseGroup* group = groupOf(*this);
  if (!group) return;
  for (int i = 0; i < group->getNumChildren(); ++i) {
    SoNode* child = group->getChild(i);
    SoFieldContainer* copy = child ? SoFieldContainer::findCopy(child, copyConnections) : nullptr;
    if (copy && copy != child) group->replaceChild(i, static_cast<VrmlNode*>(copy));
  }
}

void VrmlMFChildren::countWriteRefs(SoOutput* out) const {
  inherited::countWriteRefs(out);
  const SoChildList* list = getValue();
  for (int i = 0; list && i < list->getLength(); ++i)
    if (SoNode* child = (*list)[i]) child->writeInstance(out);
}

// Worlds are read by the world reader, never from here.
SbBool VrmlMFChildren::readValue(SoInput*) {
  if (!value)
    SoDebugError::post("VrmlMFChildren::readValue",
                       "setNodeParent() MUST be called by the node constructor before reading.");
  return FALSE;
}

void VrmlMFChildren::writeValue(SoOutput* out) const {
  const SoChildList* list = getValue();
  const int count = list ? list->getLength() : 0;
  if (count == 1) {
    write1Value(out, (*list)[0]);
    return;
  }
  out->write("[");
  out->incrementIndent();
  out->write("\n");
  for (int i = 0; i < count; ++i) write1Value(out, (*list)[i]);
  out->decrementIndent();
  out->indent();
  out->write("]");
}

void VrmlMFChildren::write1Value(SoOutput* out, SoNode* child) const {
  if (child)
    child->writeInstance(out);
  else
    out->write("NULL\n");
}
