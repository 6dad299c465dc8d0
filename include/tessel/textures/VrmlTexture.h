// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/FetchConvention.h>
#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>

#include <memory>

#include <Inventor/SbString.h>
#include <Inventor/fields/SoMFString.h>
#include <Inventor/fields/SoSFBool.h>
#include <Inventor/fields/SoSFImage.h>
#include <Inventor/sensors/SoFieldSensor.h>

namespace tessel {
class TextureCaches;
}

/// Base of the textures: an image, repeated or not along its two directions s and t.
///
/// The image stands in the node, or comes from a URL. While it is awaited the shape is drawn without a texture, and
/// asking begins when the node is read or its `url` changes. The callback of the FetchConvention is that of textures
/// that keep the image in the node; an ImageTexture asks by VrmlTextureDef.
class TESSEL_API VrmlTexture : public tessel::NodeClass<VrmlTexture, VrmlNode>,
                               public tessel::FetchConvention<VrmlTexture> {
public:
  static constexpr const char* fileFormatName = "Texture";
  static std::span<const tessel::FieldSpec> fields();

  SoMFString url;    ///< exposedField, one empty string: alternatives, the best first
  SoSFImage image;   ///< exposedField, empty: pixels in the node itself
  SoSFBool repeatS;  ///< field, TRUE: repeated along s; FALSE: the border goes on
  SoSFBool repeatT;  ///< field, TRUE: repeated along t

  static void initClass();

  /// Decodes a local image file (RGB, GIF, PNG or JPEG). `bytes` gets rows without padding, the bottom row first, of
  /// `new unsigned char[]`, which the caller deletes. False after a read error; the results are zero then. An empty
  /// name gives TRUE and no image.
  static SbBool readImage(const SbString& fileName, int& width, int& height, int& components,
                          unsigned char*& bytes);

  /// The alternative that is tried, resolved against the base URL. Empty when all have been tried.
  const SbString& getFullURLName();
  /// Asks for the image anew, from the first alternative on, when the texture is drawn next.
  void reload();
  /// A host's answer to a request: asks for the next alternative, if there is one.
  void fetchFailed();
  /// The number of the alternative that is tried, from 0.
  int getUrlIndex() const { return urlIndex; }
  /// What relative URLs are resolved against: VrmlDB::baseURL when the node was made.
  const SbString& getBaseURL() const { return baseURL; }
  void setBaseURL(const SbString& base) { baseURL = base; }

  /// Asks for the image of the current alternative.
  virtual void requestImageFromURL();
  /// Forgets the texture that was made, and that an image was asked for.
  virtual void resetTexture();
  virtual void attachFieldSensors();
  virtual void detachFieldSensors();
  /// Puts the texture into the state, for the shape that is drawn.
  virtual void reallyGLRender(SoGLRenderAction* action);

  void doAction(SoAction* action) override;
  void GLRender(SoGLRenderAction* action) override;
  void callback(SoCallbackAction* action) override;
  void notifyContainerOnly(const SoField* field) override;
  bool readBody(tessel::WorldReader& reader) override;
  void copyContents(const SoFieldContainer* from, SbBool copyConnections) override;

protected:
  VrmlTexture();
  ~VrmlTexture() override;

  /// Whether the node stands in an Appearance: it acts nowhere else.
  static bool actsIn(SoAction* action);
  /// Copies what is not a field, then the fields, without asking for an image.
  void copyQuietly(const SoFieldContainer* from, SbBool copyConnections);
  void attachImageSensor() { imageSensor.attach(&image); }

  int urlIndex = 0;
  bool urlPending = false;    ///< the image is to come from a URL, and has not
  bool requestMade = false;   ///< a request for the current alternative is out
  bool renderEnabled = true;  ///< if not, the node draws nothing

private:
  void imageChanged() { resetTexture(); }
  void urlChanged();

  SbString baseURL;
  SbString fullURL;
  std::unique_ptr<tessel::TextureCaches> caches;  // of the image in the node
  SoFieldSensor imageSensor, urlSensor;
};
