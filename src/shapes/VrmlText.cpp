// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlText.h>

#include <tessel/toolkit/VrmlContainerElement.h>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlText::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlText::fontStyle>("fontStyle", FieldKind::exposedField),
      fieldSpec<&VrmlText::string>("string", FieldKind::exposedField, {""}),
      fieldSpec<&VrmlText::maxExtent>("maxExtent", FieldKind::field, {0}),
      fieldSpec<&VrmlText::length>("length", FieldKind::field, {0}),
  };
  return table;
}

VrmlText::VrmlText() { setUpFields(); }

VrmlText::~VrmlText() = default;

int VrmlText::getContainerFlags() const { return VrmlContainerElement::fontStyle; }

void VrmlText::computeBBox(SoAction*, SbBox3f&, SbVec3f&) {}

void VrmlText::generatePrimitives(SoAction*) {}

template class tessel::NodeClass<VrmlText, VrmlGeometry>;
