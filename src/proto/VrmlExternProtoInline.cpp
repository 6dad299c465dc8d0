// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/proto/VrmlExternProtoInline.h>

#include "core/NodeClassImpl.h"

std::span<const tessel::FieldSpec> VrmlExternProtoInline::fields() { return {}; }

VrmlExternProtoInline::VrmlExternProtoInline() { setUpFields(); }

VrmlExternProtoInline::~VrmlExternProtoInline() = default;

template class tessel::NodeClass<VrmlExternProtoInline, VrmlInline>;
