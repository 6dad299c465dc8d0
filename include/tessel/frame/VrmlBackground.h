// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/frame/VrmlBindingNode.h>

#include <memory>

#include <Inventor/SbMatrix.h>
#include <Inventor/SbString.h>
#include <Inventor/SbVec2s.h>
#include <Inventor/fields/SoMFColor.h>
#include <Inventor/fields/SoMFFloat.h>
#include <Inventor/fields/SoMFString.h>

class SoGLCacheList;
class SoGLRenderAction;
class SoState;

namespace tessel {
struct BackgroundBands;
class BackgroundImage;
}  // namespace tessel

/// Background: sky and ground behind everything, in bands of colour and with images on a cube.
///
/// It is not drawn where it stands: the scene manager has the bound one drawn when the camera is set, in the
/// place of clearing the window.
///
/// An image is asked for when the background is drawn first. The host sets the callback before its first read, and
/// answers each request later, on the scene thread, by `setImage` or `fetchFailed`. Without a callback the library
/// reads local files by itself.
class TESSEL_API VrmlBackground : public tessel::NodeClass<VrmlBackground, VrmlBindingNode> {
public:
  static constexpr const char* fileFormatName = "Background";
  static std::span<const tessel::FieldSpec> fields();

  SoMFFloat groundAngle;  ///< exposedField, empty: radians from straight down, of all colours but the first
  SoMFColor groundColor;  ///< exposedField, empty: the first straight down
  SoMFString backUrl;     ///< exposedField, one empty string, like the other five: alternatives of an image
  SoMFString bottomUrl;
  SoMFString frontUrl;
  SoMFString leftUrl;
  SoMFString rightUrl;
  SoMFString topUrl;
  SoMFFloat skyAngle;  ///< exposedField, empty: radians from straight up, of all colours but the first
  SoMFColor skyColor;  ///< exposedField, 0 0 0: the first straight up

  /// A host's switch, 1 at the start: with 0 no background is drawn, whatever is bound.
  static int enabled;

  static constexpr int numImages = 6;
  /// @param index  which image: back, bottom, front, left, right, top, from 0
  using FetchCallback = void(const SbString& url, void* data, VrmlBackground* requestor, int index);
  inline static FetchCallback* fetchURLcb =
      nullptr;  ///< in the middle of a traversal: nothing must change inside
  inline static void* fetchURLdata = nullptr;
  inline static int fetchOnRead = 0;  ///< 1: ask as soon as the node is read; 0: when it is drawn first
  static void setFetchURLCallBack(FetchCallback* callback, void* data) {
    fetchURLcb = callback;
    fetchURLdata = data;
  }

  VrmlBackground();

  /// The host's answer: an image of 1 to 4 components, rows packed, the bottom row first; it is copied. An index
  /// that no image has is ignored.
  void setImage(int index, const SbVec2s& size, int components, const unsigned char* bytes);
  /// The other answer: asks for the next alternative, if there is one.
  void fetchFailed(int index);
  /// The alternative of an image that is tried, resolved against the base URL. Empty when all have been tried.
  const SbString& getFullURLName(int index);
  /// What relative URLs are resolved against: VrmlDB::baseURL when the node was made.
  const SbString& getBaseURL() const { return baseURL; }
  void setBaseURL(const SbString& base) { baseURL = base; }
  /// Asks for an image, whatever was asked for before.
  void requestHolderImage(int index);

  /// Draws the background around the eye. The window's colours and depths are the background's afterwards.
  void drawIt(SoGLRenderAction* action);
  /// The rotation that the node's place in the scene gives.
  void setRotationMatrix(const SbMatrix& matrix) { rotationMatrix = matrix; }
  const SbMatrix& getRotationMatrix() const { return rotationMatrix; }
  /// Forgets the bands, which are made anew when the background is drawn next.
  void clearColors();

  void notify(SoNotList* list) override;
  void notifyContainerOnly(const SoField* field) override;
  bool readBody(tessel::WorldReader& reader) override;
  void copyContents(const SoFieldContainer* from, SbBool copyConnections) override;

protected:
  ~VrmlBackground() override;

private:
  void setUpColors();
  void checkFetches();
  void updateTextureFlags();
  void drawingChanged();
  void renderSphere(SoGLRenderAction* action, bool drawSphere, bool useTexture);
  void drawBands() const;
  void doTexturedCube(SoState* state);

  SbMatrix rotationMatrix = SbMatrix::identity();
  std::unique_ptr<tessel::BackgroundBands> bands;  // empty: to be made
  std::unique_ptr<SoGLCacheList> cacheList;        // of the whole drawing
  std::unique_ptr<tessel::BackgroundImage> images[numImages];
  SbString baseURL;
  SbString fullURL;
  bool needsFetchCheck = true;
  bool lastUseTexture = false;
  // What the images are together.
  bool anyAlpha = false;
  bool modulates = false;  // one is not of three components
  int numTextures = 0;
  int missingLists = 0;  // images without a texture object
};
