// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

#include <span>

#include <Inventor/fields/SoSField.h>
#include <Inventor/fields/SoSubField.h>

class SoChildList;
class SoNode;

/// The `children` of a group: a field whose value is the group's own child list, so that the nodes are kept
/// once. Routes from and to plain SoMFNode fields go through converters.
///
/// The list belongs to the node whose field this is. Two fields are equal if they point to the same list.
class TESSEL_API VrmlMFChildren : public SoSField {
  typedef SoSField inherited;
  SO_SFIELD_HEADER(VrmlMFChildren, SoChildList*, SoChildList*);

public:
  static void initClass();

  /// Puts these nodes in the place of the children of the field's group, a VrmlNULL for each null pointer, as
  /// one change. Toolkit nodes are left out. What is a child before and after stays alive, and those at both ends of
  /// the list that stay where they are keep their paths.
  void setChildren(std::span<SoNode* const> nodes);

  /// Puts the copies of the group's children in their place.
  void fixCopy(SbBool copyConnections) override;
  void countWriteRefs(SoOutput* out) const override;
  /// A value that comes by a connection is taken at once: traversals look at the list, not at the field.
  void notify(SoNotList* list) override;

private:
  void write1Value(SoOutput* out, SoNode* child) const;
};
