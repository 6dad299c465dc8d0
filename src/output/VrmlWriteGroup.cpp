// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/output/VrmlWriteGroup.h>

#include "core/NodeClassImpl.h"

std::span<const tessel::FieldSpec> VrmlWriteGroup::fields() { return {}; }

VrmlWriteGroup::VrmlWriteGroup() { setUpFields(); }

VrmlWriteGroup::VrmlWriteGroup(int expectedChildren) : NodeClass(expectedChildren) { setUpFields(); }

VrmlWriteGroup::~VrmlWriteGroup() = default;

template class tessel::NodeClass<VrmlWriteGroup, VrmlCullingGroup>;
