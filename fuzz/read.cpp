// SPDX-License-Identifier: BSD-3-Clause
// Any bytes to a world, and the world through every traversal that needs no GL.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include <Inventor/SoDB.h>
#include <Inventor/SoInteraction.h>
#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/errors/SoDebugError.h>
#include <Inventor/errors/SoReadError.h>
#include <Inventor/nodes/SoNode.h>

#include <tessel/actions/VrmlCountAction.h>
#include <tessel/actions/VrmlPreTraverseAction.h>
#include <tessel/core/VrmlDB.h>
#include <tessel/toolkit/SoRef.h>

namespace {

void ignore(const SoError*, void*) {}

void start() {
  SoDB::init();
  SoInteraction::init();
  VrmlDB::init();
  SoError::setHandlerCallback(ignore, nullptr);
  SoReadError::setHandlerCallback(ignore, nullptr);
  SoDebugError::setHandlerCallback(ignore, nullptr);
}

void ignoreTriangle(void*, SoCallbackAction*, const SoPrimitiveVertex*, const SoPrimitiveVertex*,
                    const SoPrimitiveVertex*) {}
void ignoreSegment(void*, SoCallbackAction*, const SoPrimitiveVertex*, const SoPrimitiveVertex*) {}
void ignorePoint(void*, SoCallbackAction*, const SoPrimitiveVertex*) {}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool started = (start(), true);
  (void)started;

  // A small text may show a large world by USE; a run is to end in milliseconds all the same.
  tessel::ReadStatus status;
  const tessel::ReadOptions options{.maxExpanded = 20'000};
  const tessel::SoRef<SoNode> root(
      VrmlDB::read({reinterpret_cast<const char*>(data), size}, "fuzzed.wrl", status, options));
  if ((status == tessel::ReadStatus::world) != static_cast<bool>(root)) __builtin_trap();
  if (!root) return 0;

  const SbViewportRegion region(64, 64);
  SoGetBoundingBoxAction box(region);
  box.apply(root.get());

  VrmlPreTraverseAction preTraverse;
  preTraverse.apply(root.get());

  VrmlCountAction count;
  count.apply(root.get());

  SoCallbackAction callback(region);
  callback.addTriangleCallback(SoNode::getClassTypeId(), ignoreTriangle, nullptr);
  callback.addLineSegmentCallback(SoNode::getClassTypeId(), ignoreSegment, nullptr);
  callback.addPointCallback(SoNode::getClassTypeId(), ignorePoint, nullptr);
  callback.apply(root.get());

  SoRayPickAction pick(region);
  pick.setRay(SbVec3f(0.1F, 0.2F, 10), SbVec3f(0, 0, -1));
  pick.setPickAll(TRUE);
  pick.apply(root.get());
  return 0;
}
