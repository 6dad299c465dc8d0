// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/FetchConvention.h>
#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>

#include <memory>

#include <Inventor/SbColor.h>
#include <Inventor/SbString.h>
#include <Inventor/fields/SoMFString.h>
#include <Inventor/fields/SoSFVec3f.h>
#include <Inventor/misc/SoChildList.h>

class VrmlProtoDict;

/// Inline: another world in the place of the node. Until it has come, the box stands for it.
///
/// The node asks the host for its world when it is first drawn or measured (FetchConvention). The host reads the data
/// under a stack of prototype names of its own and gives the root to `setChildData`, or calls `fetchFailed`.
class TESSEL_API VrmlInline : public tessel::NodeClass<VrmlInline, VrmlNode>,
                              public tessel::FetchConvention<VrmlInline> {
public:
  static constexpr const char* fileFormatName = "Inline";
  static std::span<const tessel::FieldSpec> fields();
  static void initClass();

  SoMFString url;        ///< exposedField, one empty string: alternatives, the best first
  SoSFVec3f bboxCenter;  ///< field, 0 0 0: centre of the box
  SoSFVec3f bboxSize;    ///< field, 0 0 0: size of the box; found out from the world if not given

  /// The colour of the lines of all boxes that are made from now on; light grey at first.
  static SbColor bboxColor;

  VrmlInline();

  /// The answer of the host: the world that was asked for. A second answer takes the place of the first.
  virtual void setChildData(VrmlNode* node);
  /// The other answer: asks for the next alternative, if there is one.
  virtual void fetchFailed();
  /// Applies an action to the world, or to the box while there is no world.
  virtual void doActionOnKidsOrBox(SoAction* action);
  /// Makes the box, or moves the one that is there.
  virtual void addBoundingBoxChild(SbVec3f center, SbVec3f size);

  /// Asks the host for the current alternative. Does nothing without a callback.
  void requestChildrenFromURL();
  /// The current alternative, resolved against the base URL. Empty when all have been tried, and for the file that
  /// the node itself is in.
  const SbString& getFullURLName();
  /// The world, null while there is none.
  VrmlNode* getChildData() const;
  /// A deep copy of the world, below an unreferenced VrmlGroup; null while there is no world.
  VrmlNode* copyChildren() const;

  /// The number of the alternative that is tried, from 0.
  int getUrlIndex() const { return urlIndex; }
  bool isFetchRequested() const { return fetchRequested; }
  bool areChildrenLoaded() const { return childrenLoaded; }
  /// What relative URLs are resolved against: VrmlDB::baseURL when the node was made.
  const SbString& getBaseURL() const { return baseURL; }
  void setBaseURL(const SbString& base) { baseURL = base; }
  /// Shows the box even when the world has come.
  void setShowBox(bool show);

  /// The names of prototypes of the file that was fetched; not owned. The host sets it before `setChildData`.
  void setProtoDict(VrmlProtoDict* dict) { protoDict = dict; }
  VrmlProtoDict* getProtoDict() const { return protoDict; }
  /// The stack of those names, which from now on goes with the node; -1 for none.
  void setStackId(int id);
  int getStackId() const { return stackId; }

  bool holdsChildren() const override { return true; }
  SoChildList* getChildren() const override { return children.get(); }
  std::uint32_t getKidType() override;

  void doAction(SoAction* action) override;
  void callback(SoCallbackAction* action) override;
  void pick(SoPickAction* action) override;
  void search(SoSearchAction* action) override;
  void getMatrix(SoGetMatrixAction* action) override;
  void getBoundingBox(SoGetBoundingBoxAction* action) override;
  void handleEvent(SoHandleEventAction* action) override;
  void GLRender(SoGLRenderAction* action) override;
  void GLRenderOffPath(SoGLRenderAction* action) override;
  void collisionDetect(VrmlCollideAction* action) override;
  void count(VrmlCountAction* action) override;
  void doPreTraverse(VrmlPreTraverseAction* action) override;
  void notify(SoNotList* list) override;
  bool readBody(tessel::WorldReader& reader) override;
  void copyContents(const SoFieldContainer* from, SbBool copyConnections) override;

protected:
  ~VrmlInline() override;

  VrmlProtoDict* protoDict = nullptr;
  int urlIndex = 0;  ///< the alternative that is tried

private:
  bool hasGivenBox() const;
  void dropWorld();
  void traverseWorld(SoAction* action);

  std::unique_ptr<SoChildList> children;  // the box, then the world; empty at first
  bool fetchRequested = false;
  bool childrenLoaded = false;
  bool showBox = false;
  SbString fullURL;
  SbString baseURL;
  int stackId = -1;
};
