// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/textures/VrmlPixelTexture.h>

#include "core/NodeClassImpl.h"

std::span<const tessel::FieldSpec> VrmlPixelTexture::fields() { return {}; }

VrmlPixelTexture::VrmlPixelTexture() { setUpFields(); }

VrmlPixelTexture::~VrmlPixelTexture() = default;

template class tessel::NodeClass<VrmlPixelTexture, VrmlTexture>;
