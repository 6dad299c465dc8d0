// SPDX-License-Identifier: BSD-3-Clause
// What does a frame cost beside a bare loop of the same draws?
//
// Run it with GALLIUM_NOOP=1 too: then the software driver does nothing, and only the library's own work is left.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include <Inventor/SoFullPath.h>
#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoSearchAction.h>

#include <tessel/core/VrmlTransform.h>
#include <tessel/shapes/VrmlGeometry.h>
#include <tessel/shapes/VrmlShape.h>

#include "Frame.h"
#include "support/Bench.h"
#include "support/Worlds.h"

namespace {

/// The rival: each shape's triangles in a display list of one glDrawElements, drawn in a loop that sets matrix
/// and colour and nothing else.
class BareLoop {
public:
  explicit BareLoop(const Frame& frame) : camera(frame.getCamera()) {
    SoCallbackAction collect;
    collect.addPreCallback(
        VrmlGeometry::getClassTypeId(),
        [](void* self, SoCallbackAction* action, const SoNode*) {
          static_cast<BareLoop*>(self)->begin(action);
          return SoCallbackAction::CONTINUE;
        },
        this);
    collect.addTriangleCallback(
        VrmlGeometry::getClassTypeId(),
        [](void* self, SoCallbackAction*, const SoPrimitiveVertex* a, const SoPrimitiveVertex* b,
           const SoPrimitiveVertex* c) {
          for (const SoPrimitiveVertex* v : {a, b, c})
            static_cast<BareLoop*>(self)->corners.push_back({v->getNormal(), v->getPoint()});
        },
        this);
    collect.addPostCallback(
        VrmlGeometry::getClassTypeId(),
        [](void* self, SoCallbackAction*, const SoNode*) {
          static_cast<BareLoop*>(self)->end();
          return SoCallbackAction::CONTINUE;
        },
        this);
    collect.apply(frame.getWorld());
  }

  void draw(bool blended) const {
    Frame::clear();
    const SbViewVolume volume = camera->getViewVolume(static_cast<float>(Frame::width) / Frame::height);
    SbMatrix viewing, projection;
    volume.getMatrices(viewing, projection);
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixf(projection[0]);
    glMatrixMode(GL_MODELVIEW);
    glEnable(GL_LIGHTING);
    glEnable(GL_COLOR_MATERIAL);
    if (blended) {
      glEnable(GL_BLEND);
      glDepthMask(GL_FALSE);
    }
    for (const Draw& d : draws) {
      SbMatrix m = d.matrix;
      m.multRight(viewing);
      glLoadMatrixf(m[0]);
      glColor4fv(d.colour.getValue());
      glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, d.ambient.getValue());
      glCallList(d.list);
    }
    glPopAttrib();
    glFinish();
  }

  std::size_t size() const { return draws.size(); }
  long triangles() const { return numTriangles; }

private:
  struct Corner {
    SbVec3f normal, point;
  };
  struct Draw {
    SbMatrix matrix;
    SbVec4f colour, ambient;
    GLuint list;
  };

  void begin(SoCallbackAction* action) {
    SbColor ambient, diffuse, specular, emission;
    float shininess, transparency;
    action->getMaterial(ambient, diffuse, specular, emission, shininess, transparency);
    draws.push_back({action->getModelMatrix(), SbVec4f(diffuse[0], diffuse[1], diffuse[2], 1 - transparency),
                     SbVec4f(ambient[0], ambient[1], ambient[2], 1), 0});
    corners.clear();
  }

  void end() {
    std::vector<GLuint> index(corners.size());
    for (std::size_t i = 0; i < index.size(); ++i) index[i] = static_cast<GLuint>(i);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    glVertexPointer(3, GL_FLOAT, sizeof(Corner), &corners[0].point);
    glNormalPointer(GL_FLOAT, sizeof(Corner), &corners[0].normal);
    draws.back().list = glGenLists(1);
    glNewList(draws.back().list, GL_COMPILE);
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(index.size()), GL_UNSIGNED_INT, index.data());
    glEndList();
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    numTriangles += static_cast<long>(corners.size() / 3);
  }

  const SoPerspectiveCamera* camera;
  std::vector<Draw> draws;
  std::vector<Corner> corners;
  long numTriangles = 0;
};

/// Numbers without pattern, the same in each run.
float scatter(int i, int axis) {
  const double x = std::sin(i * 12.9898 + axis * 78.233) * 43758.5453;
  return static_cast<float>(x - std::floor(x)) * 2 - 1;
}

std::string place(int i, float reach) {
  char text[120];
  std::snprintf(text, sizeof text, "translation %.3f %.3f %.3f rotation 0 1 0 %.3f", scatter(i, 0) * reach,
                scatter(i, 1) * reach, scatter(i, 2) * reach, scatter(i, 3) * 3);
  return text;
}

std::string shape(int i, float transparency = 0, int geometry = 0) {
  char text[300];
  const char* const forms[] = {"Cylinder {}", "Box {}"};
  std::snprintf(
      text, sizeof text,
      "Shape { appearance Appearance { material Material { diffuseColor %.2f %.2f %.2f transparency %.2f } } "
      "geometry %s }",
      std::fabs(scatter(i, 4)), std::fabs(scatter(i, 5)), std::fabs(scatter(i, 6)), transparency,
      forms[geometry]);
  return text;
}

std::string partName(int i) {
  std::string name("T");
  name += std::to_string(i);
  return name;
}

/// Shapes under a tree of Transforms with eight branches each, or all in one group.
std::string tree(int n, int& made, int arity) {
  std::string text = "Transform { " + place(made + 7, 10) + " children [ ";
  if (n <= arity)
    for (int i = 0; i < n; ++i, ++made)
      text += partName(made).insert(0, "DEF ") + " Transform { " + place(made, 10) + " children " +
              shape(made) + " }\n";
  else
    for (int i = 0; i < arity; ++i) text += tree(n / arity + (i < n % arity ? 1 : 0), made, arity);
  return text + "] }\n";
}

std::string cylinders(int n) {
  int made = 0;
  return tree(n, made, 8);
}

std::string flat(int n) {
  int made = 0;
  return tree(n, made, n);
}

std::string glass(int n) {
  std::string text = "Group { children [ ";
  for (int i = 0; i < n; ++i)
    text += "Transform { " + place(i, 20) + " children " + shape(i, 0.5f, 1) + " }\n";
  return text + "] }\n";
}

/// Ten meshes of so many triangles one behind the other.
std::string panes(int n) {
  const std::string opaque = "Material { ";
  std::string mesh = bench::faceSet(n);
  mesh.insert(mesh.find(opaque) + opaque.size(), "transparency 0.5 ");
  std::string text;
  for (int i = 0; i < 10; ++i)
    text += "Transform { translation 0 0 " + std::to_string(i) + " children [\n" + mesh + "] }\n";
  return text;
}

/// The tree of many parts that is also read and measured in memory.
std::string parts(int n) { return bench::textOf(bench::partTree(n)); }

using Build = std::string (*)(int);

/// Drawing as such takes no result.
template <class Draw> auto drawing(Draw draw) {
  return [draw] {
    draw();
    return 0;
  };
}

void still(benchmark::State& state, Build build, double limit) {
  bench::start();
  Frame frame(build(static_cast<int>(state.range(0))));
  const BareLoop loop(frame);
  {
    bench::Duel duel(state, limit);
    for (auto _ : state) {
      duel.rival(drawing([&] { loop.draw(build == glass || build == panes); }));
      duel.library(drawing([&] { frame.draw(); }));
    }
  }
  state.counters["shapes"] = static_cast<double>(loop.size());
  state.counters["triangles"] = static_cast<double>(loop.triangles());
}

/// Ten Transforms right above shapes, all over the world.
std::vector<VrmlTransform*> moversOf(const Frame& frame) {
  SoSearchAction search;
  search.setType(VrmlShape::getClassTypeId());
  search.setInterest(SoSearchAction::ALL);
  search.apply(frame.getWorld());
  const SoPathList& found = search.getPaths();
  std::vector<VrmlTransform*> movers;
  for (int i = 0; i < 10; ++i) {
    const auto* path = static_cast<const SoFullPath*>(found[i * found.getLength() / 10]);
    movers.push_back(static_cast<VrmlTransform*>(path->getNodeFromTail(1)));
  }
  return movers;
}

void moving(benchmark::State& state, Build build, double limit) {
  bench::start();
  const std::string text = build(static_cast<int>(state.range(0)));
  Frame atRest(text), frame(text);
  const std::vector<VrmlTransform*> movers = moversOf(frame);
  int step = 0;
  bench::Duel duel(state, limit);
  for (auto _ : state) {
    duel.rival(drawing([&] { atRest.draw(); }));
    duel.library(drawing([&] {
      ++step;
      for (VrmlTransform* t : movers) t->translation.setValue(scatter(step, 0), 0, 0);
      frame.draw();
    }));
  }
}

}  // namespace

#define FRAMES(kind, world, limit) \
  BENCHMARK_CAPTURE(kind, world, world, limit)->UseManualTime()->Unit(benchmark::kMillisecond)
FRAMES(still, parts, 1.2)->Arg(20000);
FRAMES(still, cylinders, 1.2)->Arg(20000);
FRAMES(still, flat, 1.2)->Arg(20000);
FRAMES(still, glass, 4)->Arg(1000);
FRAMES(still, panes, 2)->Arg(100000);
FRAMES(moving, parts, 1.2)->Arg(20000);
FRAMES(moving, cylinders, 1.2)->Arg(20000);
FRAMES(moving, flat, 3)->Arg(20000);
