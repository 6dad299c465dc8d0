// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>
#include <tessel/toolkit/SoRef.h>

#include <vector>

#include <Inventor/actions/SoAction.h>
#include <Inventor/actions/SoSubAction.h>

class SoNode;
class VrmlLight;
class VrmlSound;

/// Gathers before a frame what must be known before the camera is set: the lights that shine on the whole
/// world, and the sounds that are alive. Branches without either are not entered.
class TESSEL_API VrmlPreTraverseAction : public SoAction {
  typedef SoAction inherited;
  SO_ACTION_HEADER(VrmlPreTraverseAction);

public:
  VrmlPreTraverseAction();
  ~VrmlPreTraverseAction() override;
  static void initClass();

  int kidTypeMask = 65535;  ///< which kid types to visit: bits of tessel::KidType
  int silence = 0;          ///< set while a muted world's sounds are silenced

  /// The spatial lights found in the last traversal, in the order of the traversal.
  const std::vector<tessel::SoRef<VrmlLight>>& getLights() const { return lights; }

  /// Records a light that the traversal met.
  void addLight(VrmlLight* light);
  /// Records that the traversal met a sound; one that it does not meet any more is silenced.
  void addSound(VrmlSound* sound);

protected:
  void beginTraversal(SoNode* node) override;

private:
  struct LiveSound {
    tessel::SoRef<VrmlSound> sound;
    bool dirty;
  };
  std::vector<tessel::SoRef<VrmlLight>> lights;
  std::vector<LiveSound> sounds;
};
