// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/textures/VrmlPixelTexture.h>

#include <tessel/toolkit/Scoped.h>

#include "core/NodeClassImpl.h"
#include "core/WorldReader.h"

std::span<const tessel::FieldSpec> VrmlPixelTexture::fields() { return {}; }

VrmlPixelTexture::VrmlPixelTexture() {
  setUpFields();
  detachFieldSensors();
  VrmlPixelTexture::attachFieldSensors();
}

VrmlPixelTexture::~VrmlPixelTexture() = default;

void VrmlPixelTexture::attachFieldSensors() { attachImageSensor(); }

void VrmlPixelTexture::notifyContainerOnly(const SoField* field) {
  if (field != &url) NodeClass::notifyContainerOnly(field);
}

bool VrmlPixelTexture::readBody(tessel::WorldReader& reader) {
  url.setDefault(TRUE);
  const bool good =
      VrmlNode::readBody(reader);  // NOLINT(bugprone-parent-virtual-call): it never asks for an image
  if (good) resetTexture();
  if (url.isDefault()) return good;
  const tessel::NotifyOff silence(url);
  url.setValue("");
  url.setDefault(TRUE);
  return good && reader.error("A PixelTexture has no field \"url\"");
}

template class tessel::NodeClass<VrmlPixelTexture, VrmlTexture>;
