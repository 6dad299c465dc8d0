// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/core/VrmlNULL.h>

#include "core/NodeClassImpl.h"

std::span<const tessel::FieldSpec> VrmlNULL::fields() { return {}; }

VrmlNULL::VrmlNULL() { setUpFields(); }
VrmlNULL::~VrmlNULL() = default;

template class tessel::NodeClass<VrmlNULL, VrmlNode>;
