// SPDX-License-Identifier: BSD-3-Clause
#include "support/Worlds.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace bench {

namespace {

constexpr float pi = 3.14159265F;

/// Text that grows by formatted pieces.
class Text {
public:
  explicit Text(float distance) {
    add("#VRML V2.0 utf8\nNavigationInfo { type \"EXAMINE\" }\nViewpoint { position 0 0 %g }\n",
        static_cast<double>(distance));
  }
  [[gnu::format(printf, 2, 3)]] void add(const char* format, ...) {
    char piece[512];
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(piece, sizeof piece, format, arguments);
    va_end(arguments);
    if (length < 0 || length >= static_cast<int>(sizeof piece)) std::abort();
    all.append(piece, static_cast<std::size_t>(length));
  }
  void add3(const char* format, const SbVec3f& v) {
    char piece[96];
    for (int i = 0; i < 3; ++i) {
      all.append(piece, static_cast<std::size_t>(
                            std::snprintf(piece, sizeof piece, format, static_cast<double>(v[i]))));
      all += i < 2 ? ' ' : '\n';
    }
  }
  std::string all;
};

/// The same numbers at each run.
class Random {
public:
  explicit Random(std::uint64_t seed) : state(seed) {}
  std::uint32_t next() {
    state = state * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<std::uint32_t>(state >> 33);
  }
  int below(int n) { return static_cast<int>(next() % static_cast<std::uint32_t>(n)); }
  float from(float low, float high) {
    return low + (high - low) * static_cast<float>(next()) / 2147483648.0F;
  }
  SbVec3f vector(float reach) {
    const float x = from(-reach, reach), y = from(-reach, reach);
    return {x, y, from(-reach, reach)};
  }

private:
  std::uint64_t state;
};

/// Rounded to what the text says.
float rounded(float f, float steps) { return std::round(f * steps) / steps; }
SbVec3f rounded(const SbVec3f& v, float steps) {
  return {rounded(v[0], steps), rounded(v[1], steps), rounded(v[2], steps)};
}

struct Torus {
  int across, around;
  explicit Torus(int triangles)
      : across(std::max(3, static_cast<int>(std::sqrt(triangles)))),
        around(std::max(3, triangles / 2 / across)) {}
  int count() const { return across * around; }
  SbVec3f normal(int i) const {
    const float u = 2 * pi * static_cast<float>(i / around) / static_cast<float>(across);
    const float v = 2 * pi * static_cast<float>(i % around) / static_cast<float>(around);
    return {std::cos(v) * std::cos(u), std::cos(v) * std::sin(u), std::sin(v)};
  }
  SbVec3f point(int i, float radius) const {
    const float u = 2 * pi * static_cast<float>(i / around) / static_cast<float>(across);
    return SbVec3f(std::cos(u), std::sin(u), 0) + radius * normal(i);
  }
  void addFaces(Text& text) const {
    text.add("coordIndex [\n");
    for (int i = 0; i < across; ++i)
      for (int j = 0; j < around; ++j) {
        const int a = i * around, b = (i + 1) % across * around, k = (j + 1) % around;
        text.add("%d,%d,%d,-1,%d,%d,%d,-1,\n", a + j, b + j, b + k, a + j, b + k, a + k);
      }
    text.add("]\n}\n}\n");
  }
};

constexpr float viewDistance = 3.9F;

void addPoints(Text& text, const Torus& torus) {
  Random random(1);
  text.add("geometry IndexedFaceSet {\ncoord Coordinate { point [\n");
  for (int i = 0; i < torus.count(); ++i)
    text.add3("%.5f", torus.point(i, 0.4F + random.from(-0.02F, 0.02F)));
  text.add("] }\n");
}

}  // namespace

std::string faceSet(int triangles) {
  const Torus torus(triangles);
  Text text(viewDistance);
  text.add("Shape {\nappearance Appearance { material Material { diffuseColor .8 .6 .4 } }\n");
  addPoints(text, torus);
  torus.addFaces(text);
  return text.all;
}

std::string faceSetWithAttributes(int triangles) {
  const Torus torus(triangles);
  Random random(2);
  Text text(viewDistance);
  text.add(
      "Shape {\nappearance Appearance { material Material { diffuseColor .8 .6 .4 } texture PixelTexture { "
      "image 2 2 3 "
      "0xFFFFFF 0x808080 0x808080 0xFFFFFF } }\n");
  addPoints(text, torus);
  text.add("normal Normal { vector [\n");
  for (int i = 0; i < torus.count(); ++i) text.add3("%.3f", torus.normal(i));
  text.add("] }\ncolor Color { color [\n");
  for (int i = 0; i < torus.count(); ++i) text.add3("%.2f", random.vector(0.5F) + SbVec3f(0.5F, 0.5F, 0.5F));
  text.add("] }\ntexCoord TextureCoordinate { point [\n");
  for (int i = 0; i < torus.count(); ++i)
    text.add("%.4f %.4f,\n", 8.0 * (i / torus.around) / torus.across,
             4.0 * (i % torus.around) / torus.around);
  text.add("] }\n");
  torus.addFaces(text);
  return text.all;
}

std::string mixedFaces(int faces) {
  const int side = std::max(2, static_cast<int>(std::sqrt(faces)));
  Random random(3);
  Text text(3);
  text.add(
      "Shape {\nappearance Appearance { material Material { } }\ngeometry IndexedFaceSet {\n"
      "solid FALSE colorPerVertex FALSE\ncoord Coordinate { point [\n");
  for (int i = 0; i <= side; ++i)
    for (int j = 0; j <= side; ++j) {
      const double x = 2.0 * i / side - 1;
      text.add("%.4f %.4f %.4f\n", x, 2.0 * j / side - 1, 0.1 * std::sin(4.5 * (x + 1)));
    }
  text.add("] }\ncoordIndex [\n");
  int made = 0;
  for (int i = 0; i < side; ++i)
    for (int j = 0; j < side; ++j) {
      const int a = i * (side + 1) + j, b = a + side + 1, form = random.below(3);
      if (form == 0) {
        text.add("%d %d %d -1\n%d %d %d -1\n", a, b, b + 1, a, b + 1, a + 1);
        made += 2;
      } else if (form == 1 || j + 1 == side) {
        text.add("%d %d %d %d -1\n", a, b, b + 1, a + 1);
        ++made;
      } else {
        text.add("%d %d %d %d %d %d -1\n", a, b, b + 1, b + 2, a + 2, a + 1);
        ++made;
        ++j;
      }
    }
  text.add("]\ncolor Color { color [\n");
  for (int i = 0; i < made; ++i) text.add3("%.2f", random.vector(0.5F) + SbVec3f(0.5F, 0.5F, 0.5F));
  text.add("] }\n}\n}\n");
  return text.all;
}

std::string lexicalForms(int points) {
  constexpr std::array gaps = {" ", "\t", "  ,", ",\r\n\t", "\n\n", " ,, "};
  Random random(4);
  Text text(5);
  const auto number = [&] {
    const double value = random.from(0, 1);
    switch (random.below(7)) {
      case 0:
        return text.add("%d", static_cast<int>(value * 900));
      case 1:
        return text.add("%.1f", value);
      case 2:
        return text.add("+%.3f", value);
      case 3:
        return text.add("%.6e", value);
      case 4:
        return text.add("%.9g", value);
      case 5:
        return text.add(".%03d", static_cast<int>(value * 900));
      default:
        return text.add("%.2E", value);
    }
  };
  text.add("Shape { geometry PointSet { coord Coordinate { point [\n");
  for (int i = 0; i < points; ++i) {
    if (i % 5 == 0) text.add("# point %d, of a row\n", i);
    const char* gap = gaps[static_cast<std::size_t>(random.below(gaps.size()))];
    number();
    text.add("%s", gap);
    number();
    text.add("%s", gap);
    number();
    text.add("\n");
  }
  text.add("] } } }\nSwitch { choice [\n");
  for (int i = 0; i < points / 50; ++i)
    text.add(
        "Anchor { description \"text \\\"quoted\\\" %d \\\\ end\" parameter [ \"target=_%d\" \"x\" ] }\n", i,
        i);
  text.add("] }\n");
  return text.all;
}

namespace {

// A small closed solid: a prism with a bevelled top.
PartTree::Form prism(Random& random) {
  const int sides = 6 + random.below(10);
  PartTree::Form form;
  form.color = rounded(random.vector(0.5F) + SbVec3f(0.5F, 0.5F, 0.5F), 100);
  const float height = random.from(0.3F, 1);
  for (const auto& [level, radius] : {std::pair{0.0F, 0.4F}, {height, 0.4F}, {height + 0.1F, 0.3F}})
    for (int i = 0; i < sides; ++i) {
      const float angle = 2 * pi * static_cast<float>(i) / static_cast<float>(sides);
      form.points.push_back(
          rounded(SbVec3f(radius * std::cos(angle), level, -radius * std::sin(angle)), 1000));
    }
  for (const int level : {0, sides})
    for (int i = 0; i < sides; ++i) {
      const int k = (i + 1) % sides;
      for (const int index : {level + i, level + k, level + sides + k, level + sides + i, -1})
        form.indices.push_back(index);
    }
  for (int i = sides - 1; i >= 0; --i) form.indices.push_back(i);
  form.indices.push_back(-1);
  for (int i = 0; i < sides; ++i) form.indices.push_back(2 * sides + i);
  form.indices.push_back(-1);
  return form;
}

class TreeMaker {
public:
  explicit TreeMaker(PartTree& t) : tree(t) {}

  std::vector<int> branches(int count) {
    constexpr int arity = 8;
    std::vector<int> made;
    if (count <= arity) {
      for (int i = 0; i < count; ++i) made.push_back(leaf());
      return made;
    }
    int step = arity;
    while (step * arity < count) step *= arity;
    for (; count > 0; count -= step) {
      PartTree::Place place;
      place.translation = rounded(random.vector(tree.reach / 3), 1000);
      place.turn.setValue(0, 1, 0, rounded(random.from(-1, 1), 1000));
      place.scaled = true;
      place.children = branches(std::min(step, count));
      tree.places.push_back(std::move(place));
      made.push_back(static_cast<int>(tree.places.size()) - 1);
    }
    return made;
  }

private:
  int leaf() {
    PartTree::Place place;
    place.translation = rounded(random.vector(tree.reach / 3), 1000);
    SbVec3f axis = random.vector(1);
    axis.normalize();
    axis = rounded(axis, 10000);
    place.turn.setValue(axis[0], axis[1], axis[2], rounded(random.from(-3.1F, 3.1F), 10000));
    if (!tree.forms.empty() && random.below(2) == 0) {
      place.form = random.below(static_cast<int>(tree.forms.size()));
    } else {
      tree.forms.push_back(prism(random));
      place.form = static_cast<int>(tree.forms.size()) - 1;
    }
    tree.places.push_back(std::move(place));
    return static_cast<int>(tree.places.size()) - 1;
  }

  PartTree& tree;
  Random random{5};
};

class TreeWriter {
public:
  explicit TreeWriter(const PartTree& t) : tree(t), text(2.6F * 2 * t.reach), written(t.forms.size()) {}

  std::string all() {
    for (const int place : tree.top) add(place);
    return std::move(text.all);
  }

private:
  void add(int number) {
    const PartTree::Place& place = tree.places[static_cast<std::size_t>(number)];
    if (place.form < 0 && place.scaled) text.add("DEF A_%d ", number);
    text.add("Transform { ");
    if (place.moved)
      text.add("translation %.3f %.3f %.3f ", at(place.translation, 0), at(place.translation, 1),
               at(place.translation, 2));
    text.add("rotation %.4f %.4f %.4f %.5f ", at(place.turn, 0), at(place.turn, 1), at(place.turn, 2),
             at(place.turn, 3));
    if (place.scaled) text.add("center 0 .5 0 scale 1 .98 1 ");
    text.add("children [\n");
    for (const int child : place.children) add(child);
    if (place.form >= 0) addForm(place.form);
    text.add("] }\n");
  }

  void addForm(int number) {
    const PartTree::Form& form = tree.forms[static_cast<std::size_t>(number)];
    if (written[static_cast<std::size_t>(number)]) {
      text.add("USE P%d", number);
      return;
    }
    written[static_cast<std::size_t>(number)] = true;
    text.add(
        "DEF P%d Shape { appearance Appearance { material Material { diffuseColor %.2f %.2f %.2f "
        "specularColor .3 .3 .3 "
        "shininess .4 } } geometry ",
        number, at(form.color, 0), at(form.color, 1), at(form.color, 2));
    if (form.box) {
      text.add("Box { } }\n");
      return;
    }
    text.add("IndexedFaceSet { creaseAngle 0.5 coord Coordinate { point [ ");
    for (const SbVec3f& p : form.points) text.add("%.3f %.3f %.3f, ", at(p, 0), at(p, 1), at(p, 2));
    text.add("] } coordIndex [ ");
    for (const std::int32_t index : form.indices) text.add("%d ", index);
    text.add("] } }\n");
  }

  template <class V> static double at(const V& v, int i) { return static_cast<double>(v[i]); }

  const PartTree& tree;
  Text text;
  std::vector<bool> written;
};

}  // namespace

PartTree partTree(int parts) {
  PartTree tree;
  tree.reach = std::max(1.0F, 0.7F * std::cbrt(static_cast<float>(parts)));
  tree.top = TreeMaker(tree).branches(parts);
  return tree;
}

PartTree chain(int depth) {
  PartTree tree;
  Random random(6);
  tree.forms.push_back({SbColor(0.8F, 0.6F, 0.4F), {}, {}, true});
  for (int i = 0; i < depth; ++i) {
    PartTree::Place place;
    place.turn.setValue(0, 0, 1, rounded(random.from(-0.01F, 0.01F), 100000));
    place.moved = false;
    if (i == 0)
      place.form = 0;
    else
      place.children.push_back(i - 1);
    tree.places.push_back(std::move(place));
  }
  tree.top.push_back(depth - 1);
  return tree;
}

std::string textOf(const PartTree& tree) { return TreeWriter(tree).all(); }

}  // namespace bench
