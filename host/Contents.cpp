// SPDX-License-Identifier: BSD-3-Clause
#include "Contents.h"

#include <algorithm>
#include <sstream>
#include <unordered_set>

#include <Inventor/SbViewportRegion.h>
#include <Inventor/SoPath.h>
#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/actions/SoSearchAction.h>
#include <Inventor/fields/SoMFNode.h>
#include <Inventor/fields/SoSFNode.h>
#include <Inventor/lists/SoFieldList.h>
#include <Inventor/misc/SoChildList.h>
#include <Inventor/nodes/SoGroup.h>
#include <tessel/actions/VrmlCountAction.h>
#include <tessel/core/VrmlNode.h>
#include <tessel/events/VrmlRoute.h>
#include <tessel/frame/VrmlViewpoint.h>
#include <tessel/proto/VrmlExternProtoDef.h>
#include <tessel/proto/VrmlProtoUse.h>
#include <tessel/shapes/VrmlGeometry.h>
#include <tessel/shapes/VrmlText.h>

#include "Defaults.h"
#include "JsonWriter.h"
#include "Text.h"

namespace tessel::host {
namespace {

std::string typeName(const SoNode* node) {
  if (node->isOfType(VrmlNode::getClassTypeId()))
    return static_cast<const VrmlNode*>(node)->getFileFormatName();
  return node->getTypeId().getName().getString();
}

/// Looking at fields for what they hold leaves prototype instances as they are.
SoFieldList fieldsOf(const SoNode* node) {
  SoFieldList fields;
  if (node->isOfType(VrmlNode::getClassTypeId()))
    static_cast<const VrmlNode*>(node)->listFields(fields);
  else
    node->getFields(fields);
  return fields;
}

/// Everything that hangs from a node: its children, the nodes in its fields, and what else it keeps.
void appendBelow(SoNode* node, const SoFieldList& fields, std::vector<SoNode*>& out) {
  // What a geometry is built of is no part of the world.
  const bool isWhole = node->isOfType(VrmlGeometry::getClassTypeId());
  if (const SoChildList* children = isWhole ? nullptr : node->getChildren())
    for (int i = 0; i < children->getLength(); ++i) out.push_back((*children)[i]);
  for (int i = 0; i < fields.getLength(); ++i) {
    if (fields[i]->isOfType(SoSFNode::getClassTypeId())) {
      if (SoNode* held = static_cast<SoSFNode*>(fields[i])->getValue()) out.push_back(held);
    } else if (fields[i]->isOfType(SoMFNode::getClassTypeId())) {
      const auto* list = static_cast<SoMFNode*>(fields[i]);
      for (int k = 0; k < list->getNum(); ++k)
        if ((*list)[k]) out.push_back((*list)[k]);
    }
  }
  if (node->isOfType(VrmlNode::getClassTypeId())) static_cast<VrmlNode*>(node)->listHeldNodes(out);
}

/// The definition that an instance is made from, or that it waits for.
const VrmlProtoDef* definitionOf(const VrmlProtoUse& instance) {
  return instance.getProtoDef() ? instance.getProtoDef() : instance.getExternDef();
}

/// Counts each node and each route once, by a walk that bears any depth of nesting.
void countNodes(SoNode* root, Contents& contents) {
  std::vector<SoNode*> open{root};
  std::unordered_set<SoNode*> seen;
  std::unordered_set<const VrmlProtoDef*> definitions;
  while (!open.empty()) {
    SoNode* node = open.back();
    open.pop_back();
    if (!seen.insert(node).second) continue;
    ++contents.nodes[typeName(node)];
    ++contents.nodeCount;
    if (node->isOfType(VrmlProtoUse::getClassTypeId())) {
      ++contents.instances;
      definitions.insert(definitionOf(*static_cast<VrmlProtoUse*>(node)));
    }
    const SoFieldList fields = fieldsOf(node);
    for (int i = 0; i < fields.getLength(); ++i) {
      SoFieldList ends;
      contents.routes += VrmlRoute::getOutgoing(fields[i], ends);
    }
    appendBelow(node, fields, open);
  }
  contents.protos = static_cast<long long>(definitions.size());
}

std::vector<ViewpointEntry> viewpointsOf(SoNode* root) {
  SoSearchAction search;
  search.setType(VrmlViewpoint::getClassTypeId());
  search.setInterest(SoSearchAction::ALL);
  search.setSearchingAll(TRUE);
  search.apply(root);
  std::vector<ViewpointEntry> entries;
  for (int i = 0; i < search.getPaths().getLength(); ++i) {
    const auto* viewpoint =
        static_cast<VrmlViewpoint*>(static_cast<SoFullPath*>(search.getPaths()[i])->getTail());
    entries.push_back({viewpoint->getDefName().getString(), viewpoint->description.getValue().getString()});
  }
  return entries;
}

/// Lengths as people read them: six digits at most.
std::string formatted(const SbVec3f& v) {
  std::ostringstream out;
  out << v[0] << ' ' << v[1] << ' ' << v[2];
  return out.str();
}

void writePoint(JsonWriter& json, const char* name, const SbVec3f& point) {
  json.key(name);
  json.beginArray();
  for (int i = 0; i < 3; ++i) json.value(point[i]);
  json.endArray();
}

}  // namespace

Contents contentsOf(SoNode* root) {
  Contents contents;
  if (!root) return contents;
  countNodes(root, contents);
  contents.viewpoints = viewpointsOf(root);

  const SoRef<SoGroup> world = withDefaults(root);
  // A text has triangles to count once something has asked for them.
  SoCallbackAction askTexts;
  askTexts.addTriangleCallback(
      VrmlText::getClassTypeId(), [](auto...) {}, nullptr);
  askTexts.apply(world.get());

  VrmlCountAction count;
  count.lodMode = 1;  // nothing was drawn: the finest levels
  count.apply(world.get());
  contents.triangles = count.numTriangles;
  contents.lines = count.numLineSegments;
  contents.points = count.numPoints;

  SoGetBoundingBoxAction bounds{SbViewportRegion(800, 600)};
  bounds.apply(world.get());
  contents.box = bounds.getBoundingBox();
  return contents;
}

void write(JsonWriter& json, const Contents& contents) {
  json.member("triangles", contents.triangles);
  json.member("lines", contents.lines);
  json.member("points", contents.points);
  json.member("nodes", contents.nodeCount);
  json.key("types");
  json.beginObject();
  for (const auto& [type, count] : contents.nodes) json.member(type, count);
  json.endObject();
  json.member("protos", contents.protos);
  json.member("instances", contents.instances);
  json.member("routes", contents.routes);
  json.key("viewpoints");
  json.beginArray();
  for (const ViewpointEntry& viewpoint : contents.viewpoints) {
    json.beginObject();
    json.member("name", viewpoint.name);
    json.member("description", viewpoint.description);
    json.endObject();
  }
  json.endArray();
  if (contents.box.isEmpty()) return;
  json.key("box");
  json.beginObject();
  writePoint(json, "min", contents.box.getMin());
  writePoint(json, "max", contents.box.getMax());
  json.endObject();
}

std::string formatted(const Contents& contents) {
  std::ostringstream out;
  out << "triangles   " << contents.triangles << "\nlines       " << contents.lines << "\npoints      "
      << contents.points << "\nprototypes  " << contents.protos << "\ninstances   " << contents.instances
      << "\nroutes      " << contents.routes << '\n';
  if (contents.box.isEmpty())
    out << "box         nothing to see\n";
  else
    out << "box         " << formatted(contents.box.getMin()) << "  to  " << formatted(contents.box.getMax())
        << '\n';

  out << "viewpoints  " << contents.viewpoints.size() << '\n';
  for (std::size_t i = 0; i < contents.viewpoints.size(); ++i) {
    const ViewpointEntry& viewpoint = contents.viewpoints[i];
    out << "  #" << i + 1 << ' ' << (viewpoint.name.empty() ? "-" : printable(viewpoint.name));
    if (!viewpoint.description.empty()) out << "  \"" << printable(viewpoint.description) << '"';
    out << '\n';
  }

  out << "nodes       " << contents.nodeCount << '\n';
  std::vector<std::pair<std::string, long long>> byCount(contents.nodes.begin(), contents.nodes.end());
  std::stable_sort(byCount.begin(), byCount.end(),
                   [](const auto& a, const auto& b) { return a.second > b.second; });
  for (const auto& [type, count] : byCount) out << "  " << count << ' ' << type << '\n';
  return out.str();
}

}  // namespace tessel::host
