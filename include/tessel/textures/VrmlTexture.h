// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>

#include <Inventor/fields/SoMFString.h>
#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFImage.h>

/// Base of the textures: an image, repeated or not along its two directions s and t.
class TESSEL_API VrmlTexture : public tessel::NodeClass<VrmlTexture, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "Texture";
  static std::span<const tessel::FieldSpec> fields();

  SoMFString url;    ///< exposedField, one empty string: alternatives, the best first
  SoSFImage image;   ///< exposedField, empty: pixels in the node itself
  SoSFBool repeatS;  ///< field, TRUE: repeated along s; FALSE: the border goes on
  SoSFBool repeatT;  ///< field, TRUE: repeated along t

  static void initClass();

protected:
  VrmlTexture();
  ~VrmlTexture() override;
};
