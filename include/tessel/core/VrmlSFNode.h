// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

#include <Inventor/fields/SoSFNode.h>

/// The library's single-node field: the toolkit's, with repair after a deep copy, and a look through
/// prototype instances.
class TESSEL_API VrmlSFNode : public SoSFNode {
  typedef SoSFNode inherited;
  SO_SFIELD_CONSTRUCTOR_HEADER(VrmlSFNode);
  SO_SFIELD_REQUIRED_HEADER(VrmlSFNode);

public:
  static void initClass();

  SoNode* operator=(SoNode* node) {
    setValue(node);
    return node;
  }
  /// The value, or for a prototype instance the node that does its work; null if there is none.
  SoNode* getRealValue() const;
  void notify(SoNotList* list) override;
  void fixCopy(SbBool copyConnections) override;
  /// Whether fixCopy replaces values by their copies, on during a deep copy only; gives the old setting.
  static int setFixCopy(int on);
  /// Installed by the prototypes: the node at work in a prototype instance, any other node itself.
  static void setActualNodeHook(SoNode* (*hook)(SoNode*));

private:
  static int doFixCopy;
  static SoNode* (*actualNodeOf)(SoNode*);
};
