// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/VrmlBaseGroup.h>
#include <tessel/core/VrmlMFChildren.h>

#include <deque>
#include <memory>

#include <Inventor/fields/SoMFFloat.h>
#include <Inventor/fields/SoSFVec3f.h>

class SoState;

/// LOD: a group of which one child is there, the coarser the farther away the viewer is.
///
/// A level whose Inlines or textures have not come is not drawn: it is asked for, and the next coarser one that is
/// complete stands in for it. A level that was complete once counts as complete from then on.
class TESSEL_API VrmlLOD : public tessel::NodeClass<VrmlLOD, VrmlBaseGroup> {
public:
  static constexpr const char* fileFormatName = "LOD";
  static std::span<const tessel::FieldSpec> fields();

  SoSFVec3f center;      ///< field, 0 0 0: the point whose distance from the viewer decides
  SoMFFloat range;       ///< field, empty: the distances where one level gives way to the next, ascending
  VrmlMFChildren level;  ///< exposedField: the group's child list, the finest level first

  // A host's switches.
  static float stressFactor;  ///< 1 at the start: multiplies every range; below 1 coarser levels come sooner
  static int showLowestLODOnly;  ///< 0 at the start; else the last child is drawn at all distances
  static int isDegrading;        ///< 0 at the start; else a level that is chosen is not asked for
  static int debugMode;          ///< 0 at the start; else each level is drawn in a colour of its own

  VrmlLOD();
  explicit VrmlLOD(int expectedChildren);

  /// Whether the level follows the distance, as it does at the start, or stays as `setLevel` left it.
  void setAutoLevel(bool follows) { autoLevel = follows; }
  bool isAutoLevel() const { return autoLevel; }
  /// Chooses a level; nothing is drawn for one beyond the children, the first complete one for one below 0. Does
  /// nothing while the level follows the distance.
  void setLevel(int newLevel);
  /// The level that was drawn last, -1 if none was.
  int getLevel() const { return currentLevel; }

  using RenderedCallback = void(void* data, VrmlLOD* node);
  /// Is called after each draw of the node.
  void setRenderedCallback(RenderedCallback* callback, void* data) {
    renderedCB = callback;
    renderedData = data;
  }

  /// The index of the child for the distance of the viewer, or of the avatar's move. There must be children.
  virtual int whichToTraverse(SoAction* action);
  virtual int whichToCollide(VrmlCollideAction* action);
  /// Whether all data of a level have come; false if there is no such level. With `request` what has not been asked
  /// for is.
  bool isURLDataFetched(int levelIndex, bool request);

  void doAction(SoAction* action) override;
  void callback(SoCallbackAction* action) override;
  void rayPick(SoRayPickAction* action) override;
  void getBoundingBox(SoGetBoundingBoxAction* action) override;
  void GLRenderBelowPath(SoGLRenderAction* action) override;
  void GLRenderInPath(SoGLRenderAction* action) override;
  void collisionDetect(VrmlCollideAction* action) override;
  void count(VrmlCountAction* action) override;
  void doPreTraverse(VrmlPreTraverseAction* action) override;

protected:
  ~VrmlLOD() override;
  void childrenChanged() override;

private:
  void init();
  bool& fetchedFlag(int levelIndex);
  int levelFor(const SbVec3f& eye) const;
  int firstFetchedFrom(int wanted);
  void traverseLevel(SoAction* action, int wanted);
  void doTraversal(SoAction* action, int levelIndex);
  void setDebugColors(SoState* state, int levelIndex);

  std::unique_ptr<std::deque<bool>> fetchedLevels;  // null until the first traversal
  bool autoLevel = true;
  int currentLevel = -1;
  RenderedCallback* renderedCB = nullptr;
  void* renderedData = nullptr;
};
