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

#include "core/DeepCopy.h"

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

// A list that takes over itself stays as it is.
// NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
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

void VrmlMFChildren::setChildren(std::span<SoNode* const> nodes) {
  if (!value) return;
  VrmlBaseGroup* const group = groupOf(*this);
  // What stays at the head and at the tail of the list is not touched, so that paths through it live on.
  const auto stays = [this](int index, SoNode* node) {
    auto* child = static_cast<SoNode*>(static_cast<SoBase*>(value->get(index)));
    return node ? node == child : child->isOfType(VrmlNULL::getClassTypeId());
  };
  int first = 0, end = value->getLength();
  while (!nodes.empty() && first < end && stays(first, nodes.front())) {
    nodes = nodes.subspan(1);
    ++first;
  }
  while (!nodes.empty() && first < end && stays(end - 1, nodes.back())) {
    nodes = nodes.first(nodes.size() - 1);
    --end;
  }
  std::vector<tessel::SoRef<VrmlNode>> wanted;
  wanted.reserve(nodes.size());
  for (SoNode* node : nodes)
    if (VrmlNode* child = node && group ? group->acceptableChild(node) : asChild(node))
      wanted.emplace_back(child);

  {
    const tessel::NotifyOff silence(*this);
    while (end > first) group ? group->removeChild(--end) : value->remove(--end);
    for (const auto& child : wanted) {
      group ? group->insertChild(child.get(), first) : value->insert(child.get(), first);
      ++first;
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
    SoFieldContainer* copy = child ? tessel::DeepCopy::findCopy(child, copyConnections) : nullptr;
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
