// SPDX-License-Identifier: BSD-3-Clause
#include "script/NodeList.h"

#include <algorithm>

#include <Inventor/fields/SoMFNode.h>
#include <Inventor/misc/SoChildList.h>

#include <tessel/core/VrmlMFChildren.h>
#include <tessel/core/VrmlNULL.h>

#include "script/Effort.h"

namespace tessel::script {
namespace {

bool isChildren(const SoField& field) { return field.isOfType(VrmlMFChildren::getClassTypeId()); }
const SoChildList* childrenOf(const SoField& field) {
  return static_cast<const VrmlMFChildren&>(field).getValue();
}

std::vector<SoNode*> pointers(std::span<const SoRef<SoNode>> nodes) {
  std::vector<SoNode*> list;
  list.reserve(nodes.size());
  for (const auto& node : nodes) list.push_back(node.get());
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
  Effort::addEach(4 * static_cast<std::size_t>(n));  // most are put into a field again
  list.reserve(static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i) list.emplace_back(at(field, i));
  return list;
}

void NodeList::set(SoField& field, int first, std::span<const SoRef<SoNode>> nodes) {
  if (isChildren(field)) {
    std::vector<SoRef<SoNode>> all = values(field);
    all.resize(std::max(all.size(), static_cast<std::size_t>(first) + nodes.size()));
    std::copy(nodes.begin(), nodes.end(), all.begin() + first);
    return static_cast<VrmlMFChildren&>(field).setChildren(pointers(all));
  }
  std::vector<SoNode*> list = pointers(nodes);
  static_cast<SoMFNode&>(field).setValues(first, static_cast<int>(list.size()),
                                          const_cast<const SoNode**>(list.data()));
}

void NodeList::truncate(SoField& field, int count) {
  if (!isChildren(field)) return static_cast<SoMFNode&>(field).setNum(count);
  std::vector<SoRef<SoNode>> all = values(field);
  all.resize(static_cast<std::size_t>(count));
  static_cast<VrmlMFChildren&>(field).setChildren(pointers(all));
}

}  // namespace tessel::script
