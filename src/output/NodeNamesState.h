// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <unordered_map>
#include <unordered_set>

#include <tessel/output/NodeNames.h>
#include <tessel/toolkit/SoRef.h>

#include "core/EventWatch.h"

namespace tessel {

/// The DEF name or the type of a node.
std::string plainName(const VrmlNode& node);

/// A file or the body of an instance: names and numbers are its own.
struct NameScope {
  std::string prefix;
  std::unordered_map<std::string, int> unnamed, named;  // how many nodes of a type or name there have been

  /// A name for the next node.
  std::string add(const VrmlNode& node);
};

struct NodeNames::State : EventWatch {
  SoRef<SoNode> world;
  NameScope top;
  std::unordered_map<const VrmlNode*, NameScope> scopes;  // of Inlines and instances
  std::unordered_map<const VrmlNode*, std::string> names;
  std::unordered_map<std::string, VrmlNode*> nodes;
  std::unordered_set<const SoNode*> visited;  // during a look through the world

  void sent(VrmlNode&, SoField&) override {}
  void gone(const VrmlNode& node) override;

  /// Names what has come to the world.
  void lookThrough();

private:
  void add(VrmlNode& node, NameScope& scope);
  void visit(SoNode* node, NameScope& scope);
  void visitFields(const VrmlNode& node, NameScope& scope);
  void visitChildren(const SoNode& node, NameScope& scope);
};

}  // namespace tessel
