// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

#include <Inventor/fields/SoMFNode.h>

/// The library's list of nodes: the toolkit's, and of its type, but for one thing. The toolkit's never lets
/// go of the nodes that it drops when it takes over a shorter list from another field.
class TESSEL_API VrmlMFNode : public SoMFNode {
public:
  using SoMFNode::operator=;
  const VrmlMFNode& operator=(const VrmlMFNode& source) {
    copyFrom(source);
    return *this;
  }
  void copyFrom(const SoField& source) override;
  void notify(SoNotList* list) override;
  /// Puts copies in the place of nodes that are copied too.
  void fixCopy(SbBool copyConnections) override;
};
