// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>

#include <Inventor/fields/SoSFBool.h>

/// Base of the nodes of which one of a kind is current: Viewpoint, NavigationInfo, Background and Fog.
///
/// An event at `set_bind` reaches the scene manager that shows the world inside the notification, and is
/// carried out at once.
class TESSEL_API VrmlBindingNode : public tessel::NodeClass<VrmlBindingNode, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "BindingNode";
  static std::span<const tessel::FieldSpec> fields();

  SoSFBool set_bind;  ///< eventIn, FALSE: TRUE puts the node on top of its stack, FALSE takes it off
  SoSFBool isBound;   ///< eventOut, FALSE: whether the node is the current one

  /// The node has become current: sends `isBound` TRUE.
  virtual void doBind();
  /// The node is not current any more: sends `isBound` FALSE.
  virtual void doUnbind();

  void notify(SoNotList* list) override;

protected:
  VrmlBindingNode();
  ~VrmlBindingNode() override;
};
