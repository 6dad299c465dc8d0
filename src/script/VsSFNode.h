// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string_view>

#include <Inventor/fields/SoSFNode.h>
#include <Inventor/nodes/SoNode.h>

#include <tessel/toolkit/SoRef.h>

#include "script/VsField.h"

namespace tessel::script {

class VsMemberAccess;

/// A node or none, as a script's own value or over a toolkit field. The node's events are its properties.
class VsSFNode : public VsField {
public:
  using Field = SoSFNode;
  static constexpr Type ofType = Type::sfNode;

  VsSFNode() = default;
  explicit VsSFNode(SoNode* node) : own(node) {}
  VsSFNode(SoSFNode& field, bool keepsNode) : VsField(&field, keepsNode) {}

  /// Puts a node into `result`, in the object it holds if nobody else does.
  static void setResult(Value& result, SoNode* node);
  /// The node of a value of this type.
  static SoNode* nodeOf(const Value& value) { return static_cast<const VsSFNode*>(value.object())->node(); }
  /// The world in a text, which need not begin with a header; null after reports, or without a node.
  static SoRef<SoNode> read(std::string_view text);

  SoNode* node() const { return liveField() ? static_cast<SoSFNode*>(liveField())->getValue() : own.get(); }

  Type type() const override { return ofType; }
  bool keepsNodes() const override { return VsField::keepsNodes() || own; }
  bool reset() override {
    own.reset();
    return true;
  }
  void constructField(Arguments arguments) override;

  // The properties, at one place in a script. What is no number and no vector is sent when the run is over.
  void readProperty(Value& result, VsMemberAccess& access) const;
  /// The number that the field holds now, if it holds one.
  void readNumber(Value& result, VsMemberAccess& access) const;
  /// `holder` gets the value as it is there now or will be; nothing for a vector, which would take an object, unless
  /// `wantsVector`.
  void writeProperty(Value& holder, VsMemberAccess& access, const Value& newValue, bool wantsVector) const;

private:
  void postExecute(const Value& current) override;
  SoRef<SoNode> own;
};

}  // namespace tessel::script
