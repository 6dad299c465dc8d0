// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/textures/VrmlTexture.h>

/// PixelTexture: a texture whose pixels stand in the world. It never asks for any.
class TESSEL_API VrmlPixelTexture : public tessel::NodeClass<VrmlPixelTexture, VrmlTexture> {
public:
  static constexpr const char* fileFormatName = "PixelTexture";
  static std::span<const tessel::FieldSpec> fields();

  VrmlPixelTexture();

  void attachFieldSensors() override;
  void notifyContainerOnly(const SoField* field) override;
  bool readBody(tessel::WorldReader& reader) override;

protected:
  ~VrmlPixelTexture() override;
};
