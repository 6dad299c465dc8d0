// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlVertexShape.h>

#include <tessel/toolkit/VrmlContainerElement.h>

#include "core/NodeClassImpl.h"
#include "shapes/VrmlVertexPropertyCache.h"

std::span<const tessel::FieldSpec> VrmlVertexShape::fields() {
  using enum tessel::FieldKind;
  static constexpr tessel::FieldSpec table[] = {
      tessel::fieldSpec<&VrmlVertexShape::coord>("coord", exposedField),
      tessel::fieldSpec<&VrmlVertexShape::color>("color", exposedField),
  };
  return table;
}

VrmlVertexShape::VrmlVertexShape() : vpCache(std::make_unique<VrmlVertexPropertyCache>()) { setUpFields(); }

VrmlVertexShape::~VrmlVertexShape() = default;

int VrmlVertexShape::getContainerFlags() const {
  return VrmlContainerElement::coordinate | VrmlContainerElement::color;
}

void VrmlVertexShape::notify(SoNotList* list) {
  vpCache->needFromState = VrmlVertexPropertyCache::needAll;
  VrmlGeometry::notify(list);
}

template class tessel::NodeClass<VrmlVertexShape, VrmlGeometry>;
