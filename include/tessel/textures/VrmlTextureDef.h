// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

#include <memory>

#include <Inventor/SbString.h>
#include <Inventor/SbVec2s.h>

class SoAction;
class SoGLRenderAction;
class VrmlNode;
class VrmlTextureData;

namespace tessel {
class TextureCaches;
}

/// What an ImageTexture has of the picture at one URL. The picture itself is decoded once for the whole process,
/// whoever names its URL, and is gone with the last who does.
///
/// A host that fetches sets the callback before its first read, and answers each request later, on the scene thread,
/// by `readTexture` or `fetchFailed`, or drops it with `fetchForgotten`; it holds a reference until then
/// (tessel::SoRef does). Without a callback the library reads local files by itself, at once.
class TESSEL_API VrmlTextureDef {
public:
  using FetchCallback = void(const SbString& url, void* data, VrmlTextureDef* requestor);
  /// In the middle of a traversal, a read or a notification: the scene must not change inside the callback.
  static void setFetchURLCallBack(FetchCallback* callback, void* data);

  /// @param url    with its scheme and whole
  /// @param owner  is told, by a notification of its own, when the picture has come or failed; not referenced
  VrmlTextureDef(const SbString& url, VrmlNode* owner);
  virtual ~VrmlTextureDef();
  VrmlTextureDef(const VrmlTextureDef&) = delete;
  VrmlTextureDef& operator=(const VrmlTextureDef&) = delete;

  void ref() { ++refCount; }
  /// Deletes the object with the last reference.
  void unref();

  /// Asks for the picture. If it is there, but its local file has changed since it was read, it is read again.
  void fetch();
  /// The host's answer: decodes a local file. False after a read error, and then the URL is bad.
  bool readTexture(const char* localFile);
  /// The other answer: the URL is bad, and all who wait are told.
  void fetchFailed();
  /// Tells all who wait, whatever has become of the fetch.
  void fetchEnded();
  /// There will be no answer: who names the URL next has it asked for again. Those who wait are not told. Nothing
  /// happens behind an answer.
  void fetchForgotten();

  bool isBadURL() const;
  bool isLoaded() const;
  const SbString& getURL() const;
  SbVec2s getSize() const;       ///< 0 0 without a picture
  int getNumComponents() const;  ///< 0 to 4
  /// Rows packed, the bottom row first; null without a picture. Valid until the picture is read again.
  const unsigned char* getBytes() const;

  /// The node that made the object, null once it has let go.
  VrmlNode* getOwner() const { return owner; }
  void clearOwner() { owner = nullptr; }
  /// Whether any node still waits for the picture: if not, a host need not fetch it.
  bool isWanted() const;

  /// Puts the texture into the state for the shape that is drawn, if the picture is there.
  void render(SoGLRenderAction* action, VrmlNode* node, bool repeatS, bool repeatT);
  /// The same for an action that draws nothing.
  void doAction(SoAction* action, VrmlNode* node, bool repeatS, bool repeatT);

private:
  friend VrmlTextureData;

  VrmlTextureData* data;
  VrmlNode* owner;
  std::unique_ptr<tessel::TextureCaches> caches;  // that it used last
  int refCount = 0;
  bool waits = false;  // the owner is to be told of the outcome
};
