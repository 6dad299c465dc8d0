// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/textures/VrmlTexture.h>
#include <tessel/textures/VrmlTextureDef.h>
#include <tessel/toolkit/SoRef.h>

/// ImageTexture: a texture from an image file. Textures of one URL share what was decoded and sent to GL.
class TESSEL_API VrmlImageTexture : public tessel::NodeClass<VrmlImageTexture, VrmlTexture> {
public:
  static constexpr const char* fileFormatName = "ImageTexture";
  static std::span<const tessel::FieldSpec> fields();

  VrmlImageTexture();

  SbVec2s getSize() const;       ///< 0 0 without a picture
  int getNumComponents() const;  ///< 0 to 4
  /// Rows packed, the bottom row first; null without a picture.
  const unsigned char* getBytes() const;

  void requestImageFromURL() override;
  void reallyGLRender(SoGLRenderAction* action) override;

  void doAction(SoAction* action) override;
  void GLRender(SoGLRenderAction* action) override;
  void callback(SoCallbackAction* action) override;
  void notify(SoNotList* list) override;
  bool readBody(tessel::WorldReader& reader) override;
  void copyContents(const SoFieldContainer* from, SbBool copyConnections) override;

protected:
  ~VrmlImageTexture() override;

private:
  tessel::SoRef<VrmlTextureDef> texDef;
};
