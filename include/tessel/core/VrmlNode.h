// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include <Inventor/SbName.h>
#include <Inventor/nodes/SoNode.h>
#include <Inventor/nodes/SoSubNode.h>

class VrmlCollideAction;
class SoFieldList;
class VrmlCountAction;
class VrmlPreTraverseAction;

namespace tessel {
class WorldReader;
struct FieldSpec;

/// The name that a file gave a node, as it was written, and where. An empty name and no line mark the group
/// that the reader puts round several nodes at the top of a file, which is not in the file.
struct DefName {
  SbName name;
  SbName file;
  int line = 0;
};

/// Kid types: what a branch holds that the traversal before rendering looks for.
namespace KidType {
constexpr std::uint32_t spatialLight = 1;
constexpr std::uint32_t sound = 2;
constexpr std::uint32_t foreign = 0x7FFF;      ///< of a child that is no VrmlNode: anything may be in it
constexpr std::uint32_t notComputed = 0xFFFF;  ///< of a group whose children changed
}  // namespace KidType
}  // namespace tessel

/// Base of every VRML node.
///
/// It adds to the toolkit's node the kinds of fields, the reading of a node body, the summary of what lies
/// below (kid type), the node's part in the library's own traversals, and deep copy.
class TESSEL_API VrmlNode : public SoNode {
  typedef SoNode inherited;
  SO_NODE_ABSTRACT_HEADER(VrmlNode);

public:
  static void initClass();
  static constexpr const char* fileFormatName = "Node";
  const char* getFileFormatName() const override;

  /// The DEF name exactly as the file has it; empty if the node has none. `getName` gives it less its
  /// instance suffix, and with the characters that the toolkit allows.
  const SbName& getDefName() const;
  /// Name, file and line of the DEF, null if the node has none.
  const tessel::DefName* getDef() const { return def.get(); }
  void setDef(tessel::DefName name);
  /// Names the node in the toolkit, unless 10,000 nodes have got that name from here: each time that a node of a name
  /// goes, the toolkit looks through all that have it.
  void nameInToolkit(const SbName& name);

  // The node's part in the library's traversals; nothing by default.
  virtual void collisionDetect(VrmlCollideAction* action);
  virtual void count(VrmlCountAction* action);
  virtual void doPreTraverse(VrmlPreTraverseAction* action);

  /// Whether this is a prototype instance that works as a node of `type`. An instance whose definition has
  /// not arrived yet passes a test that is not strict.
  virtual int isProtoOfType(const SoType& type, int strict);
  /// A field got a value in a way that sends no notification: bring derived state up to date, tell nobody.
  virtual void notifyContainerOnly(const SoField* field);

  /// Bit set of tessel::KidType of this node and all below it.
  virtual std::uint32_t getKidType();
  virtual int hasKidType(int mask);

  /// The number of the field's tessel::FieldKind; 4 for a field that no class lists.
  virtual int getFieldType(const SoField* field) const;
  /// Whether a connection between these fields is a route of the file, not an internal link.
  virtual int isVrmlRoute(const SoField* from, const SoField* to) const;
  /// Whether the node stands in space.
  virtual int isSpatial() const;
  virtual VrmlNode* strictVrmlReplacement();
  /// Whether the node acts on its siblings and so is drawn ahead of them.
  virtual int shouldRenderBeforeOtherChildren() const;
  /// Veto against copying the connection of a field with the node.
  virtual int shouldCopyFieldConnection(const SoField* field) const;

  /// Whether the node is a parent whose branch may change as a whole (a group, an Inline).
  virtual bool holdsChildren() const;

  // What a group asks of a child that may be a sensor of pointing devices for its siblings.
  virtual bool isGeometricSensor() const;
  virtual bool isSensorEnabled() const;
  /// The group holds the grab in the sensor's place: the next release of a grab is not the sensor's.
  virtual void ignoreGrabRelease();

  /// Whether nodes in the node's fields do not hang from it in a traversal, so that they may be nodes above
  /// it (a Script).
  virtual bool holdsNodesWeakly() const;
  /// Whether a change inside a node that a field of this one holds is a change of this one. It is not where the node
  /// stands in the scene as well, or shows nowhere: in a prototype instance, whose body has it, and in a Script.
  virtual bool heedsHeldNodes() const { return true; }
  /// Called when nobody will hold the node any more but a loop that it closes, while all in the loop is still whole.
  virtual void leaveLoop() {}

  /// Called when a node below this one, in a field that holds weakly, has taken or is about to take a reference to
  /// it: that reference no longer keeps the node alive.
  void discountReference();
  /// How many references do not count.
  int getDiscounted() const { return discounted; }

  /// Reads the body of the node, from behind its opening brace up to its closing one.
  /// False after a report if the body is wrong. Notification is off meanwhile.
  virtual bool readBody(tessel::WorldReader& reader);
  /// The entry of the class's field table under that name in the file, null if there is none.
  virtual const tessel::FieldSpec* findField(std::string_view name) const;

  /// The field that an end of a route names: that is to be sent to, or to be listened to. Null if there is none.
  virtual SoField* getRouteEnd(const SbName& name, bool isEventIn);
  /// The place of a field among the node's, which its copies have at the same place; -1 for a field of no name.
  virtual int getFieldIndex(const SoField* field) const;
  /// The field at a place.
  virtual SoField* getFieldAt(int index);
  /// Appends the fields, for who only looks at the values that they hold.
  virtual void listFields(SoFieldList& list) const;
  /// Finds the name of a field, for who only wants to tell of it; false if it is not the node's.
  virtual bool findFieldName(const SoField* field, SbName& name) const;

  /// Appends nodes that the node keeps alive otherwise than as children or in fields.
  virtual void listHeldNodes(std::vector<SoNode*>& list) const;

  /// Gives a field the neutral value of its type: 0, empty, null, the identity.
  static void initializeField(SoField* field);
  /// Copies a node with all that hangs from its fields; what is shared stays shared. The result is
  /// unreferenced.
  static SoNode* deepCopy(const VrmlNode* node, int copyConnections);
  static bool isDoingDeepCopy();

  /// False unless a class says otherwise: the state that a VRML node changes is gone when it is done.
  SbBool affectsState() const override { return FALSE; }
  SoNode* addToCopyDict() const override;
  SoFieldContainer* copyThroughConnection() const override;
  void copyContents(const SoFieldContainer* from, SbBool copyConnections) override;
  /// A host's switch, 0 at first: whether a change of what shows nothing by itself (the input of a sensor, a Fog
  /// that is not bound) is kept from the nodes above, and so asks for no redraw.
  static int optimizedNotify;

  /// Passes a notification on. With TV_OPTIMIZE_NOTIFICATION in the environment, one that the node has seen
  /// already by another way stops here.
  void notify(SoNotList* list) override;

protected:
  VrmlNode();
  ~VrmlNode() override;

  std::uint32_t kidType = 0;

  /// Whether the node is taking over the fields of another, one after the other, each with a notification: none of
  /// them is an event.
  bool isTakingCopy() const { return copyTarget == this; }

  /// Comes when the reference count falls to zero.
  void destroy() override;

private:
  static const VrmlNode* copyTarget;

  void forgetName();

  int discounted = 0;
  bool isNamed = false;  // by nameInToolkit
  /// The toolkit's reader never reads our nodes: gives FALSE after a report.
  SbBool readInstance(SoInput* in, unsigned short flags) override;

  std::unique_ptr<tessel::DefName> def;
};
