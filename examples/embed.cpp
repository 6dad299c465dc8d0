// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/core/VrmlDB.h>
#include <tessel/toolkit/SoRef.h>

#include <Inventor/SbViewportRegion.h>
#include <Inventor/SoDB.h>
#include <Inventor/SoInput.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/nodes/SoNode.h>

#include <cstdio>

int main(int argc, char** argv) {
  SoDB::init();
  VrmlDB::init();

  SoInput in;
  if (argc != 2 || !in.openFile(argv[1])) return 2;
  tessel::SoRef<SoNode> world(VrmlDB::read(&in));
  if (!world) return 1;  // what is wrong stands on standard error, with file and line

  SoGetBoundingBoxAction box(SbViewportRegion(800, 600));
  box.apply(world.get());
  float x, y, z;
  box.getBoundingBox().getSize(x, y, z);
  std::printf("%g x %g x %g metres\n", x, y, z);
}
