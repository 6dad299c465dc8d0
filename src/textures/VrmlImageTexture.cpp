// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/textures/VrmlImageTexture.h>

#include "core/NodeClassImpl.h"

std::span<const tessel::FieldSpec> VrmlImageTexture::fields() { return {}; }

VrmlImageTexture::VrmlImageTexture() { setUpFields(); }

VrmlImageTexture::~VrmlImageTexture() = default;

template class tessel::NodeClass<VrmlImageTexture, VrmlTexture>;
