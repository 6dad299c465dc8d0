// SPDX-License-Identifier: BSD-3-Clause
#include "Requests.h"

#include <utility>

#include <tessel/frame/VrmlBackground.h>
#include <tessel/proto/VrmlExternProtoInline.h>
#include <tessel/proto/VrmlInline.h>
#include <tessel/textures/VrmlTexture.h>
#include <tessel/textures/VrmlTextureDef.h>

namespace tessel::host {
namespace {

int lineOf(const VrmlNode* node) {
  const DefName* def = node ? node->getDef() : nullptr;
  return def ? def->line : 0;
}

/// The base URL of a texture, whose def may have lost it.
std::string baseOf(const VrmlNode* owner) {
  const auto* texture = dynamic_cast<const VrmlTexture*>(owner);
  return texture ? texture->getBaseURL().getString() : "";
}

class TextureRequest final : public FileRequest {
public:
  TextureRequest(std::string wanted, VrmlTextureDef* d)
      : FileRequest(std::move(wanted), baseOf(d->getOwner()), d->getOwner()), def(d) {}
  ~TextureRequest() override { def->fetchForgotten(); }  // which changes nothing behind an answer
  bool isWanted() const override { return def->isWanted(); }
  void fail() override { def->fetchFailed(); }
  void give(const char* path) override { def->readTexture(path); }

private:
  SoRef<VrmlTextureDef> def;
};

class BackgroundRequest final : public FileRequest {
public:
  BackgroundRequest(std::string wanted, VrmlBackground* n, int i)
      : FileRequest(std::move(wanted), n->getBaseURL().getString(), n), node(n), index(i) {}
  /// The answer names the image only: one to what was asked for before a change of the URLs would be taken for the new.
  bool isWanted() const override {
    return node->getRefCount() > 1 && url == node->getFullURLName(index).getString();
  }
  void fail() override { node->fetchFailed(index); }
  void give(const char* path) override {
    int width, height, components;
    unsigned char* bytes;
    const bool good = VrmlTexture::readImage(path, width, height, components, bytes);
    const std::unique_ptr<unsigned char[]> owned(bytes);
    if (good)
      node->setImage(index, SbVec2s(static_cast<short>(width), static_cast<short>(height)), components,
                     bytes);
    else
      fail();
  }

private:
  SoRef<VrmlBackground> node;
  int index;
};

template <class Made, class... Arguments> void pass(void* sink, const SbString& url, Arguments... arguments) {
  (*static_cast<const RequestListener::Sink*>(sink))(std::make_unique<Made>(url.getString(), arguments...));
}

}  // namespace

Request::Request(std::string wanted, std::string baseUrl, const VrmlNode* asker)
    : url(std::move(wanted)), base(std::move(baseUrl)), line(lineOf(asker)) {}

WorldRequest::WorldRequest(std::string wanted, VrmlInline* n)
    : Request(std::move(wanted), n->getBaseURL().getString(), n),
      node(n),
      forPrototypes(n->isOfType(VrmlExternProtoInline::getClassTypeId())) {}

bool WorldRequest::isWanted() const { return node->getRefCount() > 1; }

void WorldRequest::fail() { node->fetchFailed(); }

bool WorldRequest::meansItself() const {
  const int index = node->getUrlIndex();
  return url.empty() && index < node->url.getNum() && node->url[index].getLength() > 0;
}

RequestListener::RequestListener(Sink s) : sink(std::move(s)) {
  VrmlInline::setFetchURLCallBack(
      [](const SbString& url, void* data, VrmlInline* node) { pass<WorldRequest>(data, url, node); }, &sink);
  VrmlTextureDef::setFetchURLCallBack(
      [](const SbString& url, void* data, VrmlTextureDef* def) { pass<TextureRequest>(data, url, def); },
      &sink);
  VrmlBackground::setFetchURLCallBack([](const SbString& url, void* data, VrmlBackground* node,
                                         int index) { pass<BackgroundRequest>(data, url, node, index); },
                                      &sink);
}

RequestListener::~RequestListener() {
  VrmlInline::setFetchURLCallBack(nullptr, nullptr);
  VrmlTextureDef::setFetchURLCallBack(nullptr, nullptr);
  VrmlBackground::setFetchURLCallBack(nullptr, nullptr);
}

}  // namespace tessel::host
