// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

#include <Inventor/fields/SoSField.h>
#include <Inventor/fields/SoSubField.h>

class SoChildList;

/// The `children` of a group: a field whose value is the group's own child list, so that the nodes are kept
/// once. Routes from and to plain SoMFNode fields go through converters.
///
/// The list belongs to the node whose field this is. Two fields are equal if they point to the same list.
class TESSEL_API VrmlMFChildren : public SoSField {
  typedef SoSField inherited;
  SO_SFIELD_HEADER(VrmlMFChildren, SoChildList*, SoChildList*);

public:
  static void initClass();

  void fixCopy(SbBool copyConnections) override;
  void countWriteRefs(SoOutput* out) const override;
};
