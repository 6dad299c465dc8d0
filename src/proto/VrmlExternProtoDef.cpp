// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/proto/VrmlExternProtoDef.h>

#include "core/NodeClassImpl.h"
#include "core/WorldReader.h"

std::span<const tessel::FieldSpec> VrmlExternProtoDef::fields() { return {}; }

void VrmlExternProtoDef::initClass() {
  NodeClass::initClass();
  tessel::registerStatement("EXTERNPROTO", [](tessel::WorldReader& reader) { return read(reader) != 0; });
}

VrmlExternProtoDef::VrmlExternProtoDef() {
  setUpFields();
  url.setContainer(this);
}

VrmlExternProtoDef::~VrmlExternProtoDef() = default;

int VrmlExternProtoDef::read(tessel::WorldReader& reader) {
  return reader.error("EXTERNPROTO is not supported yet");
}

template class tessel::NodeClass<VrmlExternProtoDef, VrmlProtoDef>;
