// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlMFNode.h>
#include <tessel/core/VrmlNode.h>

#include <Inventor/fields/SoFields.h>

#include "support/TestWorld.h"

namespace tessel::test {

/// A node with a field of each kind, `RouteProbe` in a file. It counts what it is told of.
class RouteProbe : public NodeClass<RouteProbe, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "RouteProbe";
  static std::span<const FieldSpec> fields();

  SoSFFloat size;    ///< field, 0
  SoSFFloat level;   ///< exposedField, 0
  SoSFFloat in;      ///< eventIn, 0
  SoSFFloat out;     ///< eventOut, 0
  SoSFTime time;     ///< exposedField, 0
  VrmlMFNode nodes;  ///< exposedField, empty

  int notifications = 0;
  bool hasOnlyLinks = false;  ///< its connections are no routes

  RouteProbe();
  void notify(SoNotList* list) override;
  int isVrmlRoute(const SoField*, const SoField*) const override { return !hasOnlyLinks; }

protected:
  ~RouteProbe() override;
};

/// A world that may hold a RouteProbe.
class ProbeWorld : public TestWorld {
  struct Registered {
    Registered();
  };

public:
  explicit ProbeWorld(const char* text) : ProbeWorld(Registered(), text) {}
  RouteProbe& probe(const char* name) const { return *get<RouteProbe>(name); }

private:
  ProbeWorld(const Registered&, const char* text) : TestWorld(text) {}
};

}  // namespace tessel::test
