// SPDX-License-Identifier: BSD-3-Clause
#include "Defaults.h"

#include <Inventor/nodes/SoComplexity.h>
#include <Inventor/nodes/SoFont.h>
#include <Inventor/nodes/SoGroup.h>

namespace tessel::host {

SoRef<SoNode> defaults() {
  const SoRef<SoComplexity> complexity(new SoComplexity);
  complexity->type.setIgnored(TRUE);
  complexity->value.setIgnored(TRUE);
  complexity->textureQuality = 1;
  const SoRef<SoFont> font(new SoFont);
  font->name.setIgnored(TRUE);
  font->size = 1;
  const SoRef<SoGroup> both(new SoGroup);
  both->addChild(complexity.get());
  both->addChild(font.get());
  return SoRef<SoNode>(both.get());
}

SoRef<SoGroup> withDefaults(SoNode* world) {
  SoRef<SoGroup> group(new SoGroup);
  group->addChild(defaults().get());
  group->addChild(world);
  return group;
}

}  // namespace tessel::host
