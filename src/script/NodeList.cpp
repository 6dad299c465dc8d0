// SPDX-License-Identifier: BSD-3-Clause
#include "script/NodeList.h"

#include <algorithm>

#include <Inventor/fields/SoMFNode.h>
#include <Inventor/misc/SoChildList.h>

#include <tessel/core/VrmlMFChildren.h>
#include <tessel/core/VrmlNULL.h>

#include "core/Effort.h"

namespace tessel::script {
namespace {

bool isChildren(const SoField& field) { return field.isOfType(VrmlMFChildren::getClassTypeId()); }
const SoChildList* childrenOf(const SoField& field) {
  return static_cast<const VrmlMFChildren&>(field).getValue();
}

// The group holds them until they are replaced.
std::vector<SoNode*> childPointers(const SoField& field) {
  std::vector<SoNode*> list(static_cast<std::size_t>(NodeList::count(field)));
  Effort::addEach(list.size());
  const SbPList& children = *childrenOf(field);
  for (std::size_t i = 0; i < list.size(); ++i)
    list[i] = static_cast<SoNode*>(static_cast<SoBase*>(children.get(static_cast<int>(i))));
  return list;
}

std::vector<SoNode*> pointers(std::span<const SoRef<SoNode>> nodes) {
  std::vector<SoNode*> list(nodes.size());
  std::ranges::transform(nodes, list.begin(), &SoRef<SoNode>::get);
  return list;
}

}  // namespace

int NodeList::count(const SoField& field) {
  if (!isChildren(field)) return static_cast<const SoMFNode&>(field).getNum();
  const SoChildList* children = childrenOf(field);
  return children ? children->getLength() : 0;
}

SoNode* NodeList::at(const SoField& field, int i) {
  if (!isChildren(field)) return static_cast<const SoMFNode&>(field)[i];
  SoNode* child = (*childrenOf(field))[i];
  return child->isOfType(VrmlNULL::getClassTypeId()) ? nullptr : child;
}

std::vector<SoRef<SoNode>> NodeList::values(const SoField& field) {
  std::vector<SoRef<SoNode>> list;
  const int n = count(field);
  Effort::addEach(static_cast<std::size_t>(n));
  list.reserve(static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i) list.emplace_back(at(field, i));
  return list;
}

void NodeList::set(SoField& field, int first, std::span<const SoRef<SoNode>> nodes) {
  if (isChildren(field)) {
    std::vector<SoNode*> all = childPointers(field);
    all.resize(std::max(all.size(), static_cast<std::size_t>(first) + nodes.size()));
    std::ranges::transform(nodes, all.begin() + first, &SoRef<SoNode>::get);
    return static_cast<VrmlMFChildren&>(field).setChildren(all);
  }
  std::vector<SoNode*> list = pointers(nodes);
  static_cast<SoMFNode&>(field).setValues(first, static_cast<int>(list.size()),
                                          const_cast<const SoNode**>(list.data()));
}

void NodeList::truncate(SoField& field, int count) {
  if (!isChildren(field)) return static_cast<SoMFNode&>(field).setNum(count);
  std::vector<SoNode*> all = childPointers(field);
  all.resize(static_cast<std::size_t>(count));
  static_cast<VrmlMFChildren&>(field).setChildren(all);
}

}  // namespace tessel::script
