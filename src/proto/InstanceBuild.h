// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <tessel/proto/VrmlProtoUse.h>
#include <tessel/toolkit/SoRef.h>

#include "core/InstanceBudget.h"

namespace tessel {

/// Where an instance stands.
struct InstancePlace {
  std::shared_ptr<InstanceBudget> budget = std::make_shared<InstanceBudget>();
  int nesting = 1;  // instances, this one included, inside one another
  int level = 0;    // nodes above it that are no instances
};

/// The making of an instance with all instances in its body: one after the other, so that no depth of nesting needs
/// more stack.
///
/// Instances that are copied with a body announce themselves by `later`. Their fields get values from the one around
/// them before their own bodies are made.
class InstanceBuild {
public:
  /// The build that is under way, null if none.
  static InstanceBuild* current() { return running; }

  /// Makes `instance`, and all in it. False if one had to stay empty.
  static bool run(VrmlProtoUse& instance, const InstancePlace& place);
  void later(VrmlProtoUse& instance, int levelInBody);
  /// The definition of an external prototype is there, for an instance in the middle of a build or outside.
  static void complete(VrmlProtoUse& instance, VrmlProtoDef& definition, const InstancePlace& place);

private:
  struct Pending {
    SoRef<VrmlProtoUse> instance;
    InstancePlace place;
  };

  explicit InstanceBuild(VrmlProtoUse& outermost);
  ~InstanceBuild();

  void make(VrmlProtoUse& instance);
  bool fits(const VrmlProtoUse& instance);
  bool complain(const VrmlProtoUse& instance, const std::string& text);

  inline static InstanceBuild* running = nullptr;

  std::vector<Pending> open;
  std::vector<Pending> inside;  // those in the body that is being made
  InstancePlace here;
  bool complained = false;
};

}  // namespace tessel
