// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/VrmlSFNode.h>
#include <tessel/shapes/VrmlGeometry.h>

#include <memory>

class VrmlVertexPropertyCache;

/// A geometry of explicit vertices.
class TESSEL_API VrmlVertexShape : public tessel::NodeClass<VrmlVertexShape, VrmlGeometry> {
public:
  static constexpr const char* fileFormatName = "VertexShape";
  static std::span<const tessel::FieldSpec> fields();

  VrmlSFNode coord;  ///< exposedField: a Coordinate, NULL
  VrmlSFNode color;  ///< exposedField: a Color, NULL

  int getContainerFlags() const override;
  void notify(SoNotList* list) override;

protected:
  VrmlVertexShape();
  ~VrmlVertexShape() override;

  std::unique_ptr<VrmlVertexPropertyCache> vpCache;
};
