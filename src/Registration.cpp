// SPDX-License-Identifier: BSD-3-Clause
#include "Registration.h"

#include <tessel/core/VrmlBillboard.h>
#include <tessel/core/VrmlGroup.h>
#include <tessel/core/VrmlNULL.h>
#include <tessel/core/VrmlTransform.h>
#include <tessel/core/VrmlWorldInfo.h>
#include <tessel/toolkit/VrmlContainerElement.h>

#include "toolkit/TypeNames.h"

namespace tessel {

void registerAll() {
  // Before our own, so that the same names mean ours.
  typeNames().addForeignTypes();

  // Nodes, parents first.
  VrmlNode::initClass();
  VrmlBaseGroup::initClass();
  VrmlCullingGroup::initClass();
  VrmlGroup::initClass();
  VrmlTransform::initClass();
  VrmlBillboard::initClass();
  VrmlWorldInfo::initClass();
  VrmlNULL::initClass();
}

}  // namespace tessel
