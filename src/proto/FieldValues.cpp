// SPDX-License-Identifier: BSD-3-Clause
#include "proto/FieldValues.h"

#include <algorithm>
#include <vector>

#include <Inventor/fields/SoMFNode.h>
#include <Inventor/fields/SoSFNode.h>
#include <Inventor/misc/SoChildList.h>

#include <tessel/core/VrmlMFChildren.h>
#include <tessel/core/VrmlNULL.h>
#include <tessel/core/VrmlNode.h>

#include "core/AsVrmlNode.h"

namespace tessel {

void copyValue(const SoField& from, SoField& to) {
  if (from.getTypeId() != VrmlMFChildren::getClassTypeId() || to.getTypeId() == from.getTypeId()) {
    to.copyFrom(from);
    return;
  }
  std::vector<const SoNode*> nodes;
  if (const SoChildList* list = static_cast<const VrmlMFChildren&>(from).getValue())
    for (int i = 0; i < list->getLength(); ++i)
      nodes.push_back((*list)[i]->isOfType(VrmlNULL::getClassTypeId()) ? nullptr : (*list)[i]);
  auto& values = static_cast<SoMFNode&>(to);
  const int count = static_cast<int>(nodes.size());
  values.setNum(count);
  values.setValues(0, count, nodes.data());
}

namespace {

void discount(const SoNode* original, SoNode* now) {
  const VrmlNode* ours = asVrmlNode(original);
  if (ours && now && ours->getDiscounted() > 0) static_cast<VrmlNode*>(now)->discountReference();
}

}  // namespace

void discountAsIn(const SoField& from, SoField& to) {
  if (from.isOfType(SoSFNode::getClassTypeId())) {
    discount(static_cast<const SoSFNode&>(from).getValue(), static_cast<SoSFNode&>(to).getValue());
  } else if (from.isOfType(SoMFNode::getClassTypeId()) && to.isOfType(SoMFNode::getClassTypeId())) {
    const auto& originals = static_cast<const SoMFNode&>(from);
    auto& now = static_cast<SoMFNode&>(to);
    for (int i = 0; i < std::min(originals.getNum(), now.getNum()); ++i) discount(originals[i], now[i]);
  }
}

}  // namespace tessel
