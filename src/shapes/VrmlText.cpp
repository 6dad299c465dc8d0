// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/shapes/VrmlText.h>

#include <cmath>
#include <memory>
#include <optional>
#include <utility>

#include <Inventor/SbLine.h>
#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/details/SoTextDetail.h>
#include <Inventor/elements/SoCacheElement.h>
#include <Inventor/elements/SoComplexityElement.h>
#include <Inventor/elements/SoComplexityTypeElement.h>
#include <Inventor/elements/SoFontNameElement.h>
#include <Inventor/elements/SoFontSizeElement.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/elements/SoGLLazyElement.h>
#include <Inventor/elements/SoGLMultiTextureCoordinateElement.h>
#include <Inventor/elements/SoShapeHintsElement.h>
#include <Inventor/elements/SoShapeStyleElement.h>
#include <Inventor/elements/SoTextureCoordinateElement.h>
#include <Inventor/errors/SoDebugError.h>
#include <Inventor/system/gl.h>

#include <tessel/actions/VrmlCountAction.h>
#include <tessel/shapes/VrmlFontStyle.h>
#include <tessel/toolkit/Scoped.h>
#include <tessel/toolkit/VrmlContainerElement.h>

#include "core/NodeClassImpl.h"
#include "shapes/CornerBox.h"
#include "shapes/MeshBuffers.h"
#include "shapes/RealNode.h"
#include "shapes/Subdivision.h"
#include "shapes/TextLayout.h"
#include "shapes/TextMesh.h"
#include "shapes/UcsText.h"
#include "shapes/VrmlOutlineFontCache.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;
using tessel::TextDrawing;
using tessel::TextLayout;

namespace tessel {

/// What a text keeps from one traversal to the next.
struct TextDrawing {
  std::shared_ptr<VrmlOutlineFontCache> font;  ///< null before the first look at the text
  TextLayout layout;
  bool changed = true;  ///< since it was laid out

  MeshBuffers buffers;
  bool isLarge = false;

  void layOut(const VrmlText& text, float size);
};

}  // namespace tessel

namespace {

/// A text of more triangles keeps out of display lists: it has buffers of its own.
constexpr std::size_t manyTriangles = 1000;

template <class Element> bool has(SoState* state) {
  return state->isElementEnabled(Element::getClassStackIndex());
}

template <class Element, class Value> Value valueIn(SoState* state, Value otherwise) {
  return has<Element>(state) ? static_cast<Value>(Element::get(state)) : otherwise;
}

/// Leaves out the characters that a ray passes by.
class RayFilter {
public:
  RayFilter(const SbLine& ray, const TextLayout& l) : layout(l) {
    const SbVec3f &from = ray.getPosition(), &along = ray.getDirection();
    if (along[2] == 0) return;
    const SbVec3f hit = from - along * (from[2] / along[2]);
    place.setValue(hit[0], hit[1]);
    meetsPlane = true;
  }
  bool misses(const TextLayout::Character& character) const {
    if (!meetsPlane) return true;
    const SbBox2f box = layout.boxOf(character);
    const float margin = std::abs(layout.fontSize()) * 1e-3f;  // for what was rounded
    return place[0] < box.getMin()[0] - margin || place[0] > box.getMax()[0] + margin ||
           place[1] < box.getMin()[1] - margin || place[1] > box.getMax()[1] + margin;
  }

private:
  const TextLayout& layout;
  SbVec2f place;  // where the ray meets the plane of the text
  bool meetsPlane = false;
};

}  // namespace

std::span<const FieldSpec> VrmlText::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlText::fontStyle>("fontStyle", FieldKind::exposedField),
      fieldSpec<&VrmlText::string>("string", FieldKind::exposedField, {""}),
      fieldSpec<&VrmlText::maxExtent>("maxExtent", FieldKind::field, {0}),
      fieldSpec<&VrmlText::length>("length", FieldKind::field, {0}),
  };
  return table;
}

VrmlText::VrmlText() : drawing(std::make_unique<TextDrawing>()) { setUpFields(); }

VrmlText::~VrmlText() = default;

int VrmlText::getContainerFlags() const { return VrmlContainerElement::fontStyle; }

bool VrmlText::readBody(tessel::WorldReader& reader) {
  return NodeClass::readBody(reader) && tessel::takesItsNode(fontStyle, VrmlFontStyle::getClassTypeId());
}

void VrmlText::notify(SoNotList* list) {
  drawing->changed = true;
  VrmlGeometry::notify(list);
}

// Layout

void TextDrawing::layOut(const VrmlText& text, float size) {
  TextLayout::Style style;
  if (const auto* node = realNode<VrmlFontStyle>(text.fontStyle)) style = TextLayout::Style::of(*node);
  TextLayout::Fit fit;
  fit.lengths.assign(text.length.getValues(0), text.length.getValues(0) + text.length.getNum());
  if (!text.maxExtent.isIgnored()) fit.maxExtent = text.maxExtent.getValue();
  layout = TextLayout(convertToUCS(text.string), size, style, fit, *font);
  buffers.invalidate();
  changed = false;
}

// Brings font and layout up to what the node and the state ask for. False if there are no fonts.
bool VrmlText::setupFontCache(SoAction* action) {
  SoState* state = action->getState();
  const tessel::StateScope scope(state);
  if (!fontStyle.isIgnored()) {
    const tessel::ContainerScope container(state, this, getContainerFlags());
    if (auto* style = tessel::realNode<VrmlFontStyle>(fontStyle)) style->setElements(action);
  }
  float size = valueIn<SoFontSizeElement>(state, SoFontSizeElement::getDefault());
  if (!std::isfinite(size)) size = 0;

  TextDrawing& d = *drawing;
  VrmlOutlineFontCache::Key key{valueIn<SoFontNameElement>(state, SoFontNameElement::getDefault())};
  const auto type = valueIn<SoComplexityTypeElement>(state, int{SoComplexityTypeElement::OBJECT_SPACE});
  const bool onScreen = type == SoComplexityTypeElement::SCREEN_SPACE;
  const bool drawn = action->isOfType(SoGLRenderAction::getClassTypeId());
  if (onScreen && !drawn && d.font && d.font->key().font == key.font) {
    key.quality = d.font->key().quality;  // what it was drawn with: others don't know its size there
  } else {
    const SbVec3f reach(size, size, size);
    const float pixels =
        onScreen && drawn ? tessel::largerExtent(getScreenSize(state, tessel::cornerBox(-reach, reach))) : 0;
    key.quality =
        VrmlOutlineFontCache::outlineQuality(valueIn<SoComplexityElement>(state, 0.5f), type, pixels);
  }
  if (!d.font || d.font->key() != key) {
    auto font = VrmlOutlineFontCache::getFont(key);
    if (!font) return false;
    d.layout = {};  // it goes by the old one
    d.font = std::move(font);
    d.changed = true;
  }
  if (d.changed || size != d.layout.fontSize()) d.layOut(*this, size);
  return true;
}

void VrmlText::computeBBox(SoAction* action, SbBox3f& box, SbVec3f& center) {
  center.setValue(0, 0, 0);
  if (!setupFontCache(action)) return;
  const SbBox2f& flat = drawing->layout.box();
  if (flat.isEmpty()) return;
  const SbVec2f low = flat.getMin(), high = flat.getMax();
  box.extendBy(SbVec3f(low[0], low[1], 0));
  box.extendBy(SbVec3f(high[0], high[1], 0));
}

void VrmlText::count(VrmlCountAction* action) {
  VrmlCountAction::add(action->numTriangles, drawing->layout.outlinePoints());
}

// Rendering

void VrmlText::GLRender(SoGLRenderAction* action) {
  if (!shouldGLRender(action) || !setupFontCache(action) || !prepare(action)) return;
  draw(action);
  SoState* state = action->getState();
  SoGLCacheContextElement::shouldAutoCache(
      state, drawing->isLarge && !SoGLCacheContextElement::getIsRemoteRendering(state)
                 ? SoGLCacheContextElement::DONT_AUTO_CACHE
                 : SoGLCacheContextElement::DO_AUTO_CACHE);
}

// Makes the mesh if there is none that serves. False if there is nothing to draw.
bool VrmlText::prepare(SoGLRenderAction* action) {
  SoState* state = action->getState();
  TextDrawing& d = *drawing;
  if (d.layout.box().isEmpty()) return false;
  const SoShapeStyleElement* style = SoShapeStyleElement::get(state);
  const bool normals = style->needNormals(), texCoords = style->needTexCoords();
  const tessel::VertexFormat& made = d.buffers.format();
  if (d.buffers.isReady(state) && made.normals >= normals && made.texCoords >= texCoords) return true;

  tessel::VertexFormat format;
  format.normals = normals;
  format.texCoords = texCoords;
  format.normalForm = tessel::MeshBuffers::smallestNormals(state);
  const tessel::TextMesh mesh(d.layout, format);
  if (mesh.isCut())
    SoDebugError::postWarning("VrmlText::GLRender",
                              "the text has more than %d triangles: its end is not drawn",
                              static_cast<int>(tessel::TextMesh::mostTriangles));
  d.isLarge = mesh.triangleCount() > manyTriangles;
  d.buffers.fill(state, mesh.content(), d.isLarge);
  return true;
}

void VrmlText::draw(SoGLRenderAction* action) {
  using Hints = SoShapeHintsElement;
  SoState* state = action->getState();
  const tessel::StateScope scope(state);
  Hints::set(state, this, Hints::COUNTERCLOCKWISE, Hints::UNKNOWN_SHAPE_TYPE, Hints::CONVEX);
  if (SoShapeStyleElement::get(state)->needTexCoords())
    SoGLMultiTextureCoordinateElement::setTexGen(state, this, 0, nullptr, nullptr, nullptr, nullptr);
  SoGLLazyElement::getInstance(state)->send(state, SoLazyElement::ALL_MASK);
  drawing->buffers.draw(state, GL_TRIANGLES);
  if (SoCacheElement::anyOpen(state)) drawing->buffers.releaseMemory();  // the display list has it now
}

// Primitives

void VrmlText::generatePrimitives(SoAction* action) {
  if (!setupFontCache(action)) return;
  SoState* state = action->getState();
  const SoTextureCoordinateElement* function = nullptr;
  if (has<SoTextureCoordinateElement>(state) &&
      SoTextureCoordinateElement::getType(state) == SoTextureCoordinateElement::FUNCTION)
    function = SoTextureCoordinateElement::getInstance(state);
  const float size = drawing->layout.fontSize();
  std::optional<RayFilter> filter;
  if (action->isOfType(SoRayPickAction::getClassTypeId()))
    filter.emplace(static_cast<SoRayPickAction*>(action)->getLine(), drawing->layout);

  SoTextDetail detail;
  SoPrimitiveVertex corners[3];
  for (SoPrimitiveVertex& corner : corners) {
    corner.setNormal(0, 0, 1);
    corner.setDetail(&detail);
  }
  const auto place = [&](SoPrimitiveVertex& corner, const SbVec2f& local, const SbVec2f& origin) {
    const SbVec2f at = origin + local * size;
    corner.setPoint(at[0], at[1], 0);
    if (function)
      corner.setTextureCoords(function->get(corner.getPoint(), corner.getNormal()));
    else
      corner.setTextureCoords(local[0], local[1]);
  };
  drawing->layout.eachCharacter([&](const TextLayout::Character& c) {
    if (filter && filter->misses(c)) return;
    detail.setStringIndex(static_cast<int>(c.string));
    detail.setCharacterIndex(static_cast<int>(c.index));
    const tessel::GlyphMesh& mesh = c.glyph.mesh;
    for (std::size_t i = 0; i < mesh.triangles.size(); i += 3) {
      for (std::size_t k = 0; k < 3; ++k) place(corners[k], mesh.points[mesh.triangles[i + k]], c.origin);
      invokeTriangleCallbacks(action, &corners[0], &corners[1], &corners[2]);
    }
  });
}

SoDetail* VrmlText::createTriangleDetail(SoRayPickAction*, const SoPrimitiveVertex* v1,
                                         const SoPrimitiveVertex*, const SoPrimitiveVertex*, SoPickedPoint*) {
  return v1->getDetail()->copy();
}

template class tessel::NodeClass<VrmlText, VrmlGeometry>;
