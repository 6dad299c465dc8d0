// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/textures/VrmlTexture.h>

/// ImageTexture: a texture from an image file.
class TESSEL_API VrmlImageTexture : public tessel::NodeClass<VrmlImageTexture, VrmlTexture> {
public:
  static constexpr const char* fileFormatName = "ImageTexture";
  static std::span<const tessel::FieldSpec> fields();

  VrmlImageTexture();

protected:
  ~VrmlImageTexture() override;
};
