// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/VrmlBaseGroup.h>

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

class VrmlExternProtoDef;
class VrmlProtoDef;

namespace tessel {
class InstanceBuild;
class InstanceFields;
struct BodyMapEntry;
struct InstanceData;
struct InstancePlace;
}  // namespace tessel

/// An instance of a prototype. Its only child, the first node of the copied body, acts in its place.
///
/// It has a field for each field and event of the interface. What can't carry events is copied into the body once.
/// A field that can is connected with the body when somebody asks for it by name: to send to it, to listen to it, or
/// to look at it.
class TESSEL_API VrmlProtoUse : public tessel::NodeClass<VrmlProtoUse, VrmlBaseGroup> {
public:
  static constexpr const char* fileFormatName = "XXXX_ProtoUse_XXXX";
  static constexpr bool standsInNoFile = true;
  static std::span<const tessel::FieldSpec> fields();
  /// Also tells node fields how to look through instances.
  static void initClass();

  /// The outermost instance whose body is being made, null outside.
  static const VrmlProtoUse* openProtoUse;

  /// An instance with its body, or of an external prototype, whose body comes later.
  explicit VrmlProtoUse(VrmlProtoDef* definition);
  /// Empty, for copying.
  VrmlProtoUse();
  /// An instance without its body, which `readBody` makes. Inside a definition it has none.
  static VrmlProtoUse* createForReading(VrmlProtoDef& definition, const tessel::WorldReader& reader);

  /// The definition, null while it is external and has not come.
  VrmlProtoDef* getProtoDef() const;
  /// The EXTERNPROTO that this is an instance of, null if it is none.
  VrmlExternProtoDef* getExternDef() const;
  /// The node that does the work, through instances; null if there is none. The number has no effect.
  VrmlNode* getActualNode(int unused = 1) const;
  /// The type of the body's first node, the bad type if it is not known.
  SoType getDefinitionType() const;
  /// The nodes of the body after the first. They are no children, and routes reach them.
  const std::vector<tessel::SoRef<SoNode>>& getOtherNodes() const;
  /// Makes the body, or asks for it.
  void setUpFromDefinition();
  /// The real definition has come: makes the body, and moves values and routes over.
  void setUpFromExternDefinition(VrmlProtoDef* definition);

  const char* getFileFormatName() const override;
  int getFieldType(const SoField* field) const override;
  int isProtoOfType(const SoType& type, int strict) override;
  int isVrmlRoute(const SoField* from, const SoField* to) const override;
  int shouldCopyFieldConnection(const SoField* field) const override;
  int shouldRenderBeforeOtherChildren() const override;
  int isSpatial() const override;
  bool holdsNodesWeakly() const override;
  bool heedsHeldNodes() const override { return false; }
  void notifyContainerOnly(const SoField* field) override;
  bool readBody(tessel::WorldReader& reader) override;

  // Looking a field up connects it with the body.
  SoField* getField(const SbName& name) const override;
  SoField* getRouteEnd(const SbName& name, bool isEventIn) override;
  int getFieldIndex(const SoField* field) const override;
  SoField* getFieldAt(int index) override;
  void listFields(SoFieldList& list) const override;
  bool findFieldName(const SoField* field, SbName& name) const override;
  void listHeldNodes(std::vector<SoNode*>& list) const override;

  SoNode* addToCopyDict() const override;
  void copyContents(const SoFieldContainer* from, SbBool copyConnections) override;

protected:
  ~VrmlProtoUse() override;
  const SoFieldData* getFieldData() const override;

private:
  friend tessel::InstanceBuild;
  friend VrmlExternProtoDef;

  /// Which ways between an interface field and the body are connected, as bits.
  using Ways = std::uint8_t;
  static constexpr Ways in = 1, out = 2, both = in | out;

  void takeDefinition(VrmlProtoDef& definition);
  void makeFields(const VrmlProtoDef& definition);
  void makeBody();
  void copyRoutes(const SoField& source, int index);
  template <class Visit> void forEachInside(int index, Visit visit);
  void connectField(int index, Ways ways);
  void connectWithBody(int index, Ways ways);
  void pushField(int index);
  VrmlNode* mappedNode(int number) const;
  SoField* mappedField(const tessel::BodyMapEntry& entry) const;
  int indexNow(int declared) const;
  tessel::InstanceFields takeRealDefinition(VrmlProtoDef& definition);
  void moveRoutes(tessel::InstanceFields& before);
  void moveRoutes(SoField& old, int index);

  std::unique_ptr<tessel::InstanceData> data;
};
