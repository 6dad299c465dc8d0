// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/core/VrmlGroup.h>

#include "core/NodeClassImpl.h"

std::span<const tessel::FieldSpec> VrmlGroup::fields() { return {}; }

VrmlGroup::VrmlGroup() { setUpFields(); }
VrmlGroup::VrmlGroup(int expectedChildren) : NodeClass(expectedChildren) { setUpFields(); }
VrmlGroup::~VrmlGroup() = default;

template class tessel::NodeClass<VrmlGroup, VrmlCullingGroup>;
