// SPDX-License-Identifier: BSD-3-Clause
#include "support/Rivals.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include <tessel/core/VrmlTransform.h>
#include <tessel/shapes/VrmlAppearance.h>
#include <tessel/shapes/VrmlBox.h>
#include <tessel/shapes/VrmlCoordinate.h>
#include <tessel/shapes/VrmlIndexedFaceSet.h>
#include <tessel/shapes/VrmlMaterial.h>
#include <tessel/shapes/VrmlShape.h>

using tessel::SoRef;

namespace bench {

namespace {

bool isBlank(char c) { return c == ' ' || c == ',' || (c >= '\t' && c <= '\r'); }
bool endsWord(char c) { return isBlank(c) || c == '{' || c == '}' || c == '[' || c == ']' || c == '"'; }

template <class Class> Class* make() { return static_cast<Class*>(Class::getClassTypeId().createInstance()); }

SoRef<VrmlShape> buildShape(const PartTree::Form& form) {
  auto* material = make<VrmlMaterial>();
  material->diffuseColor.setValue(form.color);
  auto* appearance = make<VrmlAppearance>();
  auto* shape = make<VrmlShape>();
  if (form.box) {
    appearance->material.setValue(material);
    shape->appearance.setValue(appearance);
    shape->geometry.setValue(make<VrmlBox>());
    return SoRef(shape);
  }
  material->specularColor.setValue(0.3F, 0.3F, 0.3F);
  material->shininess.setValue(0.4F);
  appearance->material.setValue(material);
  auto* points = make<VrmlCoordinate>();
  points->point.setValues(0, static_cast<int>(form.points.size()), form.points.data());
  auto* faces = make<VrmlIndexedFaceSet>();
  faces->creaseAngle.setValue(0.5F);
  faces->coord.setValue(points);
  faces->coordIndex.setValues(0, static_cast<int>(form.indices.size()), form.indices.data());
  shape->appearance.setValue(appearance);
  shape->geometry.setValue(faces);
  return SoRef(shape);
}

}  // namespace

Numbers scanNumbers(std::string_view text, const Numbers& known) {
  Numbers found;
  found.fractions.reserve(known.fractions.size());
  found.indices.reserve(known.indices.size());
  const char* p = text.data();
  const char* const end = p + text.size();
  bool whole = false;
  while (p != end) {
    const char c = *p;
    if (isBlank(c)) {
      ++p;
    } else if (c == '#') {
      while (p != end && *p != '\n' && *p != '\r') ++p;
    } else if (c == '"') {
      for (++p; p != end && *p != '"'; ++p)
        if (*p == '\\' && p + 1 != end) ++p;
      if (p != end) ++p;
      ++found.words;
    } else if ((c >= '0' && c <= '9') || c == '-' || c == '+' || c == '.') {
      const char* from = c == '+' ? p + 1 : p;
      if (whole)
        p = std::from_chars(from, end, found.indices.emplace_back()).ptr;
      else
        p = std::from_chars(from, end, found.fractions.emplace_back()).ptr;
      while (p != end && !endsWord(*p)) ++p;
    } else if (endsWord(c)) {
      ++p;
    } else {
      const char* from = p;
      while (p != end && !endsWord(*p)) ++p;
      whole = std::string_view(from, static_cast<std::size_t>(p - from)).ends_with("Index");
      ++found.words;
    }
  }
  return found;
}

Numbers readNumbers(const std::string& path, const Numbers& known) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), &std::fclose);
  if (!file) std::abort();
  std::fseek(file.get(), 0, SEEK_END);
  const auto size = static_cast<std::size_t>(std::ftell(file.get()));
  std::rewind(file.get());
  const std::unique_ptr<char[]> text(new char[size]);  // not filled with zeros first
  if (std::fread(text.get(), 1, size, file.get()) != size) std::abort();
  return scanNumbers({text.get(), size}, known);
}

SoRef<VrmlGroup> buildByCalls(const PartTree& tree) {
  std::vector<SoRef<VrmlShape>> shapes;
  shapes.reserve(tree.forms.size());
  for (const PartTree::Form& form : tree.forms) shapes.push_back(buildShape(form));
  std::vector<SoRef<VrmlTransform>> built;
  built.reserve(tree.places.size());
  for (const PartTree::Place& place : tree.places) {
    auto* transform = make<VrmlTransform>();
    if (place.moved) transform->translation.setValue(place.translation);
    transform->rotation.setValue(SbVec3f(place.turn[0], place.turn[1], place.turn[2]), place.turn[3]);
    if (place.scaled) {
      transform->center.setValue(0, 0.5F, 0);
      transform->scale.setValue(1, 0.98F, 1);
    }
    for (const int child : place.children) transform->addChild(built[static_cast<std::size_t>(child)].get());
    if (place.form >= 0) transform->addChild(shapes[static_cast<std::size_t>(place.form)].get());
    built.emplace_back(transform);
  }
  SoRef root(make<VrmlGroup>());
  for (const int place : tree.top) root->addChild(built[static_cast<std::size_t>(place)].get());
  return root;
}

}  // namespace bench
