// SPDX-License-Identifier: BSD-3-Clause
// What do Scripts cost that each get an event in a frame and write a field of another node, beside the same events and
// writes of the bare toolkit?
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include <Inventor/fields/SoSFFloat.h>
#include <Inventor/misc/SoNotification.h>
#include <Inventor/nodes/SoGroup.h>
#include <Inventor/nodes/SoSubNode.h>
#include <Inventor/nodes/SoTransform.h>

#include <tessel/core/VrmlDB.h>
#include <tessel/core/VrmlGroup.h>
#include <tessel/core/VrmlTransform.h>

#include "support/Bench.h"

using tessel::SoRef;

// Everything that the program allocates.
static long allocations = 0;
[[gnu::noinline]] void* operator new(std::size_t size) {
  ++allocations;
  if (void* room = std::malloc(size)) return room;
  std::abort();
}
[[gnu::noinline]] void operator delete(void* room) noexcept { std::free(room); }
[[gnu::noinline]] void operator delete(void* room, std::size_t) noexcept { std::free(room); }

/// Writes to its target when it gets an event.
class BareScript : public SoNode {
  SO_NODE_HEADER(BareScript);

public:
  static void initClass() { SO_NODE_INIT_CLASS(BareScript, SoNode, "Node"); }
  BareScript() {
    SO_NODE_CONSTRUCTOR(BareScript);
    SO_NODE_ADD_FIELD(go, (0));
  }
  void notify(SoNotList* list) override {
    if (target && list->getLastField() == &go) target->translation.setValue(go.getValue(), 0, 0);
    SoNode::notify(list);
  }
  SoSFFloat go;
  SoTransform* target = nullptr;

private:
  ~BareScript() override = default;
};

SO_NODE_SOURCE(BareScript);

namespace {

constexpr int count = 1000;

/// Scripts, and the nodes that they write to.
class Scripted {
public:
  Scripted() {
    std::string text = "#VRML V2.0 utf8\nGroup { children [\n";
    for (int i = 0; i < count; ++i) {
      const std::string n = std::to_string(i);
      text += "DEF T" + n + " Transform { }\nScript { eventIn SFFloat go field SFNode t USE T" + n +
              "\n url \"vrmlscript: function go(v) { t.translation = new SFVec3f(v, 0, 0); }\" }\n";
    }
    tessel::ReadStatus status;
    root.reset(static_cast<VrmlGroup*>(VrmlDB::read(text + "] }", "bench.wrl", status)));
    if (!root) std::abort();
    for (int i = 0; i < count; ++i)
      events.push_back(static_cast<SoSFFloat*>(root->getChild(2 * i + 1)->getField("go")));
  }
  float frame(float x) {
    for (SoSFFloat* event : events) event->setValue(x);
    return static_cast<const VrmlTransform*>(root->getChild(2 * (count - 1)))->translation.getValue()[0];
  }

private:
  SoRef<VrmlGroup> root;
  std::vector<SoSFFloat*> events;
};

class Bare {
public:
  Bare() : root(new SoGroup) {
    static const bool once = (BareScript::initClass(), true);
    static_cast<void>(once);
    for (int i = 0; i < count; ++i) {
      auto* target = new SoTransform;
      auto* script = new BareScript;
      script->target = target;
      root->addChild(target);
      root->addChild(script);
    }
  }
  float frame(float x) {
    for (int i = 0; i < count; ++i) static_cast<BareScript*>(root->getChild(2 * i + 1))->go.setValue(x);
    return static_cast<const SoTransform*>(root->getChild(2 * (count - 1)))->translation.getValue()[0];
  }

private:
  SoRef<SoGroup> root;
};

void writing(benchmark::State& state) {
  bench::start();
  Scripted scripted;
  Bare bare;
  float x = 0;
  for (; x < 3; ++x)
    if (scripted.frame(x) != bare.frame(x)) std::abort();
  {
    bench::Duel duel(state, 5);
    for (auto _ : state) {
      ++x;
      duel.rival([&] { return bare.frame(x); });
      duel.library([&] { return scripted.frame(x); });
    }
  }
  const long before = allocations;
  scripted.frame(++x);
  state.counters["allocations"] = static_cast<double>(allocations - before);
}
BENCHMARK(writing)->UseManualTime()->Iterations(200)->Unit(benchmark::kMicrosecond);

}  // namespace
