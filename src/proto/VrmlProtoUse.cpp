// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/proto/VrmlProtoUse.h>

#include "core/NodeClassImpl.h"

std::span<const tessel::FieldSpec> VrmlProtoUse::fields() { return {}; }

VrmlProtoUse::VrmlProtoUse() { setUpFields(); }

VrmlProtoUse::~VrmlProtoUse() = default;

template class tessel::NodeClass<VrmlProtoUse, VrmlBaseGroup>;
