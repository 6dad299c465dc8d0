// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/core/VrmlLOD.h>

#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGLRenderAction.h>

#include "core/NodeClassImpl.h"

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

VrmlLOD::VrmlLOD() { init(); }

VrmlLOD::VrmlLOD(int expectedChildren) : NodeClass(expectedChildren) { init(); }

VrmlLOD::~VrmlLOD() = default;

void VrmlLOD::init() {
  setUpFields();
  level.setValue(childList.get());  // no longer the default: a file always gets it
}

void VrmlLOD::childrenChanged() { level.touch(); }

void VrmlLOD::doAction(SoAction* action) {
  if (action->getCurPathCode() == SoAction::IN_PATH)
    VrmlBaseGroup::doAction(action);
  else if (getNumChildren() > 0)
    childList->traverse(action, 0, 0);
}

// Whoever walks the whole world sees all levels.
void VrmlLOD::callback(SoCallbackAction* action) { VrmlBaseGroup::doAction(action); }

void VrmlLOD::GLRenderBelowPath(SoGLRenderAction* action) { doAction(action); }

template class tessel::NodeClass<VrmlLOD, VrmlBaseGroup>;
