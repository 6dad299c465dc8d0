// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

class SbString;
class SoBase;
class SoField;
class SoFieldList;
class SoOutput;
class SoType;

namespace tessel {
class WorldReader;
}

/// Routes: connections of toolkit fields that stand for a ROUTE of a world.
///
/// There is no route table and no event queue: an event is the toolkit's notification along the connection,
/// and a value is copied when it is read. Connections with other reasons (prototype interfaces, engines) are
/// kept apart by VrmlNode::isVrmlRoute.
class TESSEL_API VrmlRoute {
public:
  VrmlRoute() = delete;

  /// Told of each route made (`added` 1) and removed (0).
  using Callback = void(void* userData, SoField* from, SoField* to, int added);

  /// Reads what follows the word ROUTE. 0 after a report.
  static int read(tessel::WorldReader& reader);
  /// Reads one end, `node.field`. Null if it is none; wrong names are reported.
  static SoField* readEnd(tessel::WorldReader& reader, int isEventIn);
  /// Makes a route without sending an event. 0 if the kinds of the fields don't allow it, or with a warning if events
  /// would have more than some thousands of routes to take one behind the other; one that exists is warned of and
  /// counts as made. A second source of a field goes through a VrmlFanIn.
  static int add(SoField* from, SoField* to, int skipKindCheck = 0);
  /// 1 if there was such a route.
  static int remove(SoField* from, SoField* to);
  static int routeExists(SoField* from, SoField* to);
  static int connectionExists(SoField* from, SoField* to);
  /// Writes a ROUTE line, as a comment if an end can't be named.
  static void write(SoOutput* out, SoField* from, SoField* to);

  // The fields at the other end of routes, or of all connections, appended; the number is given.
  static int getIncoming(const SoField* to, SoFieldList& list);
  static int getOutgoing(const SoField* from, SoFieldList& list);
  static int getAllIncoming(const SoField* to, SoFieldList& list);
  static int getAllOutgoing(const SoField* from, SoFieldList& list);

  static int isRoute(const SoField* from, const SoField* to);
  /// Equal types, or `children` and SoMFNode; nothing else is converted.
  static int canRouteBetweenTypeIds(const SoType& from, const SoType& to);

  static void addCallback(Callback* callback, void* userData);
  static void removeCallback(Callback* callback, void* userData);
  static void invokeCallbacks(SoField* from, SoField* to, int added);
  /// The name of a node as a ROUTE line must spell it.
  static void getRefNameString(SoOutput* out, SoBase* base, SbString& name);

  static int doInvoke;  ///< 0 mutes all callbacks
};
