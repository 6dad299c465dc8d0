// SPDX-License-Identifier: BSD-3-Clause
// What do the events of an animated world cost in a frame, beside the bare connections of the toolkit's fields?
#include <benchmark/benchmark.h>

#include <malloc.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <Inventor/SoDB.h>
#include <Inventor/fields/SoSFVec3f.h>
#include <Inventor/misc/SoNotification.h>
#include <Inventor/nodes/SoSubNode.h>
#include <Inventor/nodes/SoTransform.h>
#include <Inventor/sensors/SoSensorManager.h>

#include <Inventor/actions/SoCallbackAction.h>
#include <tessel/core/VrmlDB.h>
#include <tessel/core/VrmlGroup.h>
#include <tessel/core/VrmlTransform.h>
#include <tessel/events/VrmlTimeSensor.h>
#include <tessel/frame/VrmlSceneManager.h>

#include "Frame.h"
#include "support/Bench.h"

using tessel::SoRef;

// The rival's nodes: fields of the toolkit, and a middle node that does what must be done for an event. No
// notification goes up from them.

class BareSource : public SoNode {
  SO_NODE_HEADER(BareSource);

public:
  static void initClass() { SO_NODE_INIT_CLASS(BareSource, SoNode, "Node"); }
  BareSource() {
    SO_NODE_CONSTRUCTOR(BareSource);
    SO_NODE_ADD_FIELD(fraction, (0));
  }
  void notify(SoNotList*) override {}
  SoSFFloat fraction;
};

class BareMiddle : public SoNode {
  SO_NODE_HEADER(BareMiddle);

public:
  static void initClass() { SO_NODE_INIT_CLASS(BareMiddle, SoNode, "Node"); }
  BareMiddle() {
    SO_NODE_CONSTRUCTOR(BareMiddle);
    SO_NODE_ADD_FIELD(in, (0));
    SO_NODE_ADD_FIELD(point, (0, 0, 0));
    SO_NODE_ADD_FIELD(number, (0));
  }
  void notify(SoNotList* list) override {
    if (list->getLastField() != &in) return;
    if (sendsNumber)
      number.setValue(in.getValue());
    else
      point.setValue(in.getValue(), 0, 0);
  }
  SoSFFloat in;
  SoSFVec3f point;
  SoSFFloat number;
  bool sendsNumber = false;
};

SO_NODE_SOURCE(BareSource);
SO_NODE_SOURCE(BareMiddle);

namespace {

constexpr double startTime = 1'000'000'000;
constexpr double frameRate = 30;

void startAll() {
  bench::start();
  static const bool once = (BareSource::initClass(), BareMiddle::initClass(), true);
  static_cast<void>(once);
}

double heap() { return static_cast<double>(mallinfo2().uordblks); }

void tick(int frame) {
  VrmlDB::setClock(SbTime(startTime + frame / frameRate));
  SoDB::getSensorManager()->processTimerQueue();
  SoDB::getSensorManager()->processDelayQueue(TRUE);
}

/// A world on a virtual clock, with a scene manager that listens to it. A frame has all but drawing.
class AnimatedWorld {
public:
  explicit AnimatedWorld(const std::string& text) {
    VrmlDB::takeClock(SbTime(startTime));
    VrmlDB::setFrameTime();
    tessel::ReadStatus status;
    root.reset(VrmlDB::read("#VRML V2.0 utf8\n" + text, "bench.wrl", status));
    if (!root) std::abort();
    manager.setSceneGraph(root.get());
    for (int i = 0; i < 3; ++i) frame();
  }

  int frame() {
    tick(++frames);
    action.apply(root.get());
    return frames;
  }

  /// Where the Transforms are to be: the values rise from 0 to 3 by way of 1 at 0.3 and 2 at 0.6. Ticks see the
  /// time of the frame before.
  double expected() const {
    constexpr int framesPerCycle = 300;
    const int inCycle = (frames - 1) % framesPerCycle;
    const double f = inCycle == 0 ? 1 : static_cast<double>(inCycle) / framesPerCycle;
    return f < 0.6 ? f / 0.3 : 2 + (f - 0.6) / 0.4;
  }

private:
  SoRef<SoNode> root;
  VrmlSceneManager manager;
  SoCallbackAction action;
  int frames = 0;
};

// The worlds, and for each its rival: as many sources, middles and destinations, connected in the same way.

std::string name(const char* stem, int i) {
  char text[24];
  std::snprintf(text, sizeof text, "%s%d", stem, i);
  return text;
}

std::string node(const std::string& name, const char* body) { return "DEF " + name + ' ' + body; }
std::string clockNode(const std::string& name) {
  return node(name, "TimeSensor { loop TRUE cycleInterval 10 }\n");
}
std::string transform(const std::string& name) { return node(name, "Transform { }\n"); }
std::string position(const std::string& name) {
  return node(name, "PositionInterpolator { key [ 0 0.3 0.6 1 ] keyValue [ 0 0 0, 1 0 0, 2 0 0, 3 0 0 ] }\n");
}

std::string route(const std::string& from, const std::string& to) {
  return "ROUTE " + from + " TO " + to + "\n";
}

/// Each Transform has a clock and an interpolator of its own.
std::string chains(int count) {
  std::string nodes, routes;
  for (int i = 0; i < count; ++i) {
    const std::string t = name("T", i), x = name("X", i), interpolator = name("I", i);
    nodes += clockNode(t) + position(interpolator) + transform(x);
    routes += route(t + ".fraction_changed", interpolator + ".set_fraction") +
              route(interpolator + ".value_changed", x + ".set_translation");
  }
  return "Group { children [ " + nodes + " ] }\n" + routes;
}

/// One interpolator moves all Transforms.
std::string fan(int count) {
  std::string nodes = clockNode("T") + position("I");
  std::string routes = route("T.fraction_changed", "I.set_fraction");
  for (int i = 0; i < count; ++i) {
    nodes += transform(name("X", i));
    routes += route("I.value_changed", name("X", i) + ".set_translation");
  }
  return "Group { children [ " + nodes + " ] }\n" + routes;
}

/// The value of each interpolator is the fraction of the next; the last one moves a Transform.
std::string row(int count) {
  std::string nodes = clockNode("T") + position("I") + transform("X");
  std::string routes, from = "T.fraction_changed";
  for (int i = 0; i < count; ++i) {
    const std::string scalar = name("S", i);
    nodes += node(scalar, "ScalarInterpolator { key [ 0 0.5 1 ] keyValue [ 0 0.5 1 ] }\n");
    routes += route(from, scalar + ".set_fraction");
    from = scalar + ".value_changed";
  }
  return "Group { children [ " + nodes + " ] }\n" + routes + route(from, "I.set_fraction") +
         route("I.value_changed", "X.set_translation");
}

class Bare {
public:
  void addChains(int count) {
    for (int i = 0; i < count; ++i) target(middle(source().fraction).point);
  }
  void addFan(int count) {
    SoField& from = middle(source().fraction).point;
    for (int i = 0; i < count; ++i) target(from);
  }
  void addRow(int count) {
    SoField* from = &source().fraction;
    for (int i = 0; i < count; ++i) {
      BareMiddle& next = middle(*from);
      next.sendsNumber = true;
      from = &next.number;
    }
    target(middle(*from).point);
  }

  float frame(float fraction) {
    for (const auto& node : sources) node->fraction.setValue(fraction);
    float sum = 0;
    for (const auto& node : targets) sum += node->translation.getValue()[0];
    return sum / static_cast<float>(targets.size());
  }

private:
  BareSource& source() { return *sources.emplace_back(new BareSource); }
  BareMiddle& middle(SoField& from) {
    BareMiddle& node = *middles.emplace_back(new BareMiddle);
    node.in.connectFrom(&from);
    return node;
  }
  void target(SoField& from) { targets.emplace_back(new SoTransform)->translation.connectFrom(&from); }

  std::vector<SoRef<BareSource>> sources;
  std::vector<SoRef<BareMiddle>> middles;
  std::vector<SoRef<SoTransform>> targets;
};

struct Contest {
  const char* name;
  std::string (*world)(int);
  void (Bare::*bare)(int);
};
constexpr Contest contests[] = {
    {"chains", chains, &Bare::addChains}, {"fan", fan, &Bare::addFan}, {"row", row, &Bare::addRow}};

/// A frame's events, and a traversal that reads all Transforms but draws nothing.
void events(benchmark::State& state) {
  startAll();
  const Contest& contest = contests[state.range(0)];
  const int count = static_cast<int>(state.range(1));
  AnimatedWorld world(contest.world(count));
  Bare bare;
  (bare.*contest.bare)(count);
  if (std::fabs(bare.frame(0.5F) - 0.5F) > 1e-3) std::abort();
  const SoNode* last = SoNode::getByName(state.range(0) == 2 ? "X" : name("X", count - 1).c_str());
  const double before = heap();
  double mostWrong = 0;
  {
    bench::Duel duel(state, 3);
    float step = 0;
    for (auto _ : state) {
      duel.rival([&] { return bare.frame(step += 0.001F); });
      duel.library([&] { return world.frame(); });
      const float x = static_cast<const VrmlTransform*>(last)->translation.getValue()[0];
      mostWrong = std::max(mostWrong, std::fabs(x - world.expected()));
    }
  }
  if (mostWrong > 1e-3) state.SkipWithError("the Transforms are not where they should be");
  state.counters["grown"] = heap() - before;  // bytes, in all frames together
  state.SetLabel(contest.name);
}

// Points in motion.

constexpr int side = 45;  // 2,025 points

float height(int i, int j, int key) {
  return std::sin(static_cast<float>(i) * 0.3F + static_cast<float>(key)) *
         std::cos(static_cast<float>(j) * 0.2F);
}

std::vector<SbVec3f> wave(int key) {
  std::vector<SbVec3f> points;
  for (int i = 0; i < side; ++i)
    for (int j = 0; j < side; ++j)
      points.emplace_back(static_cast<float>(i), static_cast<float>(j), height(i, j, key));
  return points;
}

std::vector<int> quads() {
  std::vector<int> index;
  for (int i = 0; i + 1 < side; ++i)
    for (int j = 0; j + 1 < side; ++j) {
      const int a = i * side + j;
      for (const int corner : {a, a + side, a + side + 1, a + 1, -1}) index.push_back(corner);
    }
  return index;
}

std::string waving(bool smooth) {
  std::string values, index;
  for (const int key : {0, 1})
    for (const SbVec3f& p : wave(key))
      values += std::to_string(p[0]) + " " + std::to_string(p[1]) + " " + std::to_string(p[2]) + ", ";
  for (const int i : quads()) index += std::to_string(i) + " ";
  return clockNode("T") + "DEF I CoordinateInterpolator { key [ 0 1 ] keyValue [ " + values +
         " ] } Shape { appearance Appearance { material Material { } } geometry IndexedFaceSet { " +
         (smooth ? "creaseAngle 3 " : "") + "coord DEF POINTS Coordinate { } coordIndex [ " + index +
         " ] } }\n" + route("T.fraction_changed", "I.set_fraction") +
         route("I.value_changed", "POINTS.set_point");
}

/// The least that such a frame needs: the blend, the normals of the faces and, if smooth, those of the points, and
/// a draw from these arrays.
class PlainWave {
public:
  explicit PlainWave(bool s) : smooth(s) {
    for (std::size_t face = 0; face < quadIndex.size() / 5; ++face) {
      const auto corner = [&](unsigned k) {
        return smooth ? static_cast<GLuint>(quadIndex[5 * face + k]) : static_cast<GLuint>(4 * face) + k;
      };
      for (const unsigned k : {0U, 1U, 2U, 0U, 2U, 3U}) triangles.push_back(corner(k));
    }
    vertices.resize(smooth ? points.size() : 4 * (quadIndex.size() / 5));
  }

  void compute(float at) {
    for (std::size_t i = 0; i < points.size(); ++i) points[i] = from[i] * (1 - at) + to[i] * at;
    for (std::size_t i = 0; smooth && i < points.size(); ++i) vertices[i] = {points[i], SbVec3f(0, 0, 0)};
    std::size_t next = 0;
    for (std::size_t i = 0; i < quadIndex.size(); i += 5) {
      const auto corner = [&](std::size_t k) { return static_cast<std::size_t>(quadIndex[i + k]); };
      SbVec3f n = (points[corner(2)] - points[corner(0)]).cross(points[corner(3)] - points[corner(1)]);
      n.normalize();
      for (std::size_t k = 0; k < 4; ++k)
        if (smooth)
          vertices[corner(k)].normal += n;
        else
          vertices[next++] = {points[corner(k)], n};
    }
    for (Vertex& v : vertices)
      if (smooth) v.normal.normalize();
  }

  void draw(const Frame& frame) const {
    frame.loadMatrices();
    glEnable(GL_LIGHTING);
    for (const GLenum array : {GL_VERTEX_ARRAY, GL_NORMAL_ARRAY}) glEnableClientState(array);
    glVertexPointer(3, GL_FLOAT, sizeof(Vertex), &vertices.data()->point);
    glNormalPointer(GL_FLOAT, sizeof(Vertex), &vertices.data()->normal);
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(triangles.size()), GL_UNSIGNED_INT, triangles.data());
    for (const GLenum array : {GL_VERTEX_ARRAY, GL_NORMAL_ARRAY}) glDisableClientState(array);
    glFinish();
  }

  float someHeight() const { return vertices[7].point[2]; }

private:
  struct Vertex {
    SbVec3f point, normal;
  };

  bool smooth;
  std::vector<SbVec3f> from = wave(0), to = wave(1), points = from;
  std::vector<int> quadIndex = quads();
  std::vector<Vertex> vertices;
  std::vector<GLuint> triangles;
};

/// A frame in which a CoordinateInterpolator moves the points of a mesh with generated normals. Run it with
/// GALLIUM_NOOP=1: else most of what is measured on both sides is the software driver.
void points(benchmark::State& state) {
  startAll();
  const bool smooth = state.range(0) != 0;
  VrmlDB::takeClock(SbTime(startTime));
  VrmlDB::setFrameTime();
  Frame frame(waving(smooth));
  PlainWave plain(smooth);
  int frames = 0;
  {
    bench::Duel duel(state, 3);
    for (auto _ : state) {
      ++frames;
      duel.rival([&] {
        Frame::clear();
        plain.compute(static_cast<float>(frames % 300) / 300);
        plain.draw(frame);
        return plain.someHeight();
      });
      duel.library([&] {
        tick(frames);
        VrmlDB::setFrameTime();
        frame.draw();
        return 0;
      });
    }
  }
  state.SetLabel(smooth ? "smooth" : "flat");
}

}  // namespace

// World (0 chains, 1 fan, 2 row) and how many.
BENCHMARK(events)
    ->Args({0, 1000})
    ->Args({0, 10000})
    ->Args({0, 20000})
    ->Args({1, 2000})
    ->Args({2, 100})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(points)->Arg(0)->Arg(1)->UseManualTime()->Unit(benchmark::kMillisecond);
