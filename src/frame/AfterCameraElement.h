// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <Inventor/elements/SoFocalDistanceElement.h>

namespace tessel {

/// Tells the active scene manager when a camera, any camera, has been set up in GL: setting the focal
/// distance is the last thing that the toolkit's cameras do when they are drawn.
///
/// It takes the place of its base in VrmlRenderAction alone, so no other action is touched.
class AfterCameraElement : public SoFocalDistanceElement {
  typedef SoFocalDistanceElement inherited;
  SO_ELEMENT_HEADER(AfterCameraElement);

public:
  /// Registers the class and enables it; after VrmlRenderAction.
  static void initClass();
  void setElt(float distance) override;

protected:
  ~AfterCameraElement() override;
};

}  // namespace tessel
