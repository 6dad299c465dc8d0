// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string_view>

// What the fuzz targets do with a world.

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
#include <tessel/script/ScriptReport.h>
#include <tessel/toolkit/PlainReport.h>

namespace tessel::fuzz {

inline void ignore(const SoError*, void*) {}
inline void ignoreText(std::string_view, void*) {}
inline void ignoreReport(const ScriptReport&, void*) {}

/// Starts the library, with nobody to listen to its reports and few steps for scripts.
inline void start() {
  SoDB::init();
  SoInteraction::init();
  VrmlDB::init();
  SoError::setHandlerCallback(ignore, nullptr);
  SoReadError::setHandlerCallback(ignore, nullptr);
  SoDebugError::setHandlerCallback(ignore, nullptr);
  setPlainReportHandler(ignoreText, nullptr);
  setScriptReportHandler(ignoreReport, nullptr);
  setScriptStepLimit(2000);
}

/// Asks for what a host would ask of a vertex.
inline void look(SoCallbackAction& action, const SoPrimitiveVertex& vertex) {
  SbColor ambient, diffuse, specular, emission;
  float shininess = 0, transparency = 0;
  action.getMaterial(ambient, diffuse, specular, emission, shininess, transparency,
                     vertex.getMaterialIndex());
}
inline void lookAtTriangle(void*, SoCallbackAction* action, const SoPrimitiveVertex* a,
                           const SoPrimitiveVertex* b, const SoPrimitiveVertex* c) {
  for (const SoPrimitiveVertex* vertex : {a, b, c}) look(*action, *vertex);
}
inline void lookAtSegment(void*, SoCallbackAction* action, const SoPrimitiveVertex* a,
                          const SoPrimitiveVertex* b) {
  for (const SoPrimitiveVertex* vertex : {a, b}) look(*action, *vertex);
}
inline void lookAtPoint(void*, SoCallbackAction* action, const SoPrimitiveVertex* vertex) {
  look(*action, *vertex);
}

/// Sends a world through every traversal that needs no GL.
inline void traverse(SoNode* root) {
  const SbViewportRegion region(64, 64);
  SoGetBoundingBoxAction box(region);
  box.apply(root);

  VrmlPreTraverseAction preTraverse;
  preTraverse.apply(root);

  VrmlCountAction count;
  count.apply(root);

  SoCallbackAction callback(region);
  callback.addTriangleCallback(SoNode::getClassTypeId(), lookAtTriangle, nullptr);
  callback.addLineSegmentCallback(SoNode::getClassTypeId(), lookAtSegment, nullptr);
  callback.addPointCallback(SoNode::getClassTypeId(), lookAtPoint, nullptr);
  callback.apply(root);

  SoRayPickAction pick(region);
  pick.setRay(SbVec3f(0.1F, 0.2F, 10), SbVec3f(0, 0, -1));
  pick.setPickAll(TRUE);
  pick.apply(root);
}

}  // namespace tessel::fuzz
