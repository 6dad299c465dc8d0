// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/proto/VrmlProtoDef.h>

#include "core/NodeClassImpl.h"
#include "core/WorldReader.h"

std::span<const tessel::FieldSpec> VrmlProtoDef::fields() { return {}; }

void VrmlProtoDef::initClass() {
  NodeClass::initClass();
  tessel::registerStatement("PROTO", [](tessel::WorldReader& reader) { return read(reader) != 0; });
  tessel::prototypeHooks().readIS = &VrmlProtoDef::readIS;
}

VrmlProtoDef::VrmlProtoDef() { setUpFields(); }

VrmlProtoDef::~VrmlProtoDef() = default;

int VrmlProtoDef::read(tessel::WorldReader& reader) { return reader.error("PROTO is not supported yet"); }

bool VrmlProtoDef::readIS(tessel::WorldReader& reader, std::string_view, SoField*, bool& error) {
  error = false;
  tessel::Lexer& lexer = reader.lexer();
  if (lexer.strictName() != "IS") {
    lexer.putBack();
    return false;
  }
  error = true;
  if (lexer.strictName().empty()) return reader.error("Missing event or field name for IS");
  return reader.error("IS statement outside PROTO definition");
}

template class tessel::NodeClass<VrmlProtoDef, VrmlNode>;
