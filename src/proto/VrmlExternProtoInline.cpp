// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/proto/VrmlExternProtoInline.h>

#include <string>

#include <Inventor/errors/SoDebugError.h>

#include <tessel/proto/VrmlExternProtoDef.h>
#include <tessel/proto/VrmlProtoDict.h>
#include <tessel/toolkit/SoRef.h>

#include "core/NodeClassImpl.h"

using tessel::SoRef;

std::span<const tessel::FieldSpec> VrmlExternProtoInline::fields() { return {}; }

VrmlExternProtoInline::VrmlExternProtoInline() { setUpFields(); }

VrmlExternProtoInline::~VrmlExternProtoInline() = default;

void VrmlExternProtoInline::setChildData(VrmlNode*) {
  if (!owner) return;
  const SoRef<VrmlExternProtoInline> alive(this);
  const SoRef<VrmlExternProtoDef> asker(owner);
  const std::string tried = urlIndex < url.getNum() ? url[urlIndex].getString() : "";
  const std::size_t hash = tried.rfind('#');
  VrmlProtoDef* found = nullptr;
  if (protoDict)
    found = hash == std::string::npos ? protoDict->getFirstDefinition()
                                      : protoDict->findInThis(tried.c_str() + hash + 1);
  if (found && asker->canBecome(*found)) {
    asker->setDefinition(found);
    return;
  }
  SoDebugError::post("VrmlExternProtoInline::setChildData", "Can't find EXTERNPROTO in url \"%s\"",
                     tried.c_str());
  fetchFailed();
}

void VrmlExternProtoInline::fetchFailed() {
  if (!owner) return;
  if (urlIndex + 1 < url.getNum())
    VrmlInline::fetchFailed();
  else
    owner->fetchFailed();
}

template class tessel::NodeClass<VrmlExternProtoInline, VrmlInline>;
