// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/core/NodeClass.h>
#include <tessel/core/VrmlNode.h>
#include <tessel/toolkit/SoRef.h>

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include <Inventor/SbName.h>
#include <Inventor/SoType.h>
#include <Inventor/fields/SoFieldData.h>

class SbStringList;
class SoField;
class SoOutput;
class VrmlGroup;
class VrmlProtoDict;
class VrmlProtoUse;

namespace tessel {
class ProtoInterface;
struct BodyMap;
struct InstancePlace;
enum class FieldKind : int;
enum class ValueType : std::uint8_t;
}  // namespace tessel

/// A prototype: an interface of fields and events, and the body that each instance copies. It stands in no
/// file as a node; a PROTO statement makes it.
///
/// Nothing of a body is ever drawn or run. Instances of other prototypes in it have their fields alone; their bodies
/// are made where the whole is made.
class TESSEL_API VrmlProtoDef : public tessel::NodeClass<VrmlProtoDef, VrmlNode> {
public:
  static constexpr const char* fileFormatName = "XXXX_ProtoDef_XXXX";
  static constexpr bool standsInNoFile = true;
  static std::span<const tessel::FieldSpec> fields();
  /// Also enters the PROTO statement, the IS clause and the names of prototypes with the reader.
  static void initClass();

  SbName name;        ///< the prototype's name
  int routesInPlace;  ///< 1 while mappings stand as routes of the definition
  int stackId;        ///< the stack that was current when the definition was made

  VrmlProtoDef();

  /// Reads what follows the word PROTO, and enters the definition in its scope. 0 after a report.
  static int read(tessel::WorldReader& reader);
  /// Reads `IS name` behind the name of a body's field and enters the mapping. False if none stands there, or
  /// with `error` set after a report.
  static bool readIS(tessel::WorldReader& reader, std::string_view fieldName, SoField* field, bool& error);
  /// A new instance of the prototype of that name in the current stack, unreferenced, whose body is made when its
  /// fields are read; null if there is none.
  static VrmlProtoUse* createUse(tessel::WorldReader& reader, std::string_view name);
  /// The innermost definition whose body is being read, null outside.
  static VrmlProtoDef* getTopProtoDef();

  /// Name, interface and body.
  virtual int readContents(tessel::WorldReader& reader);
  /// `readValues` tells whether fields have their defaults behind them.
  int readNameAndInterface(tessel::WorldReader& reader, int readValues);
  /// Reads one field or event. 0 at the end of the interface, or with `error` set after a report.
  int readInterfaceItem(tessel::WorldReader& reader, int readValues, int& error);
  /// From here to closePrototype, prototypes are defined in a scope of this one.
  void openPrototype();
  void closePrototype();

  /// The nodes of the body. Never null.
  VrmlGroup* getBody() const { return body.get(); }
  /// The scope of the prototypes that the body defines, null if it was never open.
  const VrmlProtoDict* getInnerDict() const { return innerDict.get(); }
  /// Where the statement stands, null for a definition that was not read.
  const tessel::DefName* getPlace() const { return getDef(); }
  /// The type of the body's first node, the bad type if there is none.
  SoType getType() const;
  /// The type of the node that does an instance's work: that of the first node, through prototypes; the bad type if it
  /// is not known or there is none.
  SoType getWorkType() const;
  int getNumInterfaceFields() const;
  SoField* getInterfaceField(int index) const;
  int getFieldType(const SoField* field) const override;
  int isVrmlRoute(const SoField* from, const SoField* to) const override;

  // The mappings: a field of the body, and the index of an interface field.
  int getNumIsMappings() const;
  void getIsMapping(int mapping, const SoField*& field, int& index) const;
  void addIsMapping(const SoField* field, int index);
  /// Which ways values go for an interface field.
  void getWhichIsMapRoutes(int index, int& toBody, int& fromBody) const;
  /// Whether a field of the body has IS clauses; appends the names of their interface fields, which the list owns.
  int isIS(SoField* field, SbStringList& names) const;
  /// For a host that edits a definition as a graph: makes routes of the mappings, and mappings of the routes.
  void moveIsMappingsToRoutes();
  void moveRoutesToIsMappings();

  /// Writes keyword, name and interface, with the defaults of fields if wanted.
  void writeNameAndInterface(SoOutput* out, const char* keyword, int withValues);
  void writeInterfaceItem(SoOutput* out, int index, int withValue);

  // For instances.
  const tessel::ProtoInterface& getInterface() const { return *interface; }
  /// How many nodes the body has, less the bodies of instances in it.
  std::uint64_t getBodyNodes() const { return bodyNodes; }
  /// How many nodes a traversal of an instance meets.
  std::uint64_t getExpandedNodes() const { return expandedNodes; }
  /// How many levels of nodes such a traversal goes through.
  int getExpandedLevels() const { return expandedLevels; }
  int getBodyLevels() const { return bodyLevels; }
  /// Whether an instance has instances of `other` in it, as far as definitions are known.
  bool leadsTo(const VrmlProtoDef& other) const;
  const tessel::BodyMap& getBodyMap() const;

protected:
  ~VrmlProtoDef() override;
  const SoFieldData* getFieldData() const override;
  /// Enters a field in the interface. Null if the name is taken.
  SoField* addInterfaceField(std::string_view fieldName, tessel::FieldKind kind, tessel::ValueType type);

private:
  class Reading;
  static Reading* innermostReading;

  struct Mapping {
    SoField* field;
    int index;
  };

  std::unique_ptr<tessel::ProtoInterface> interface;
  SoFieldData interfaceData;
  std::vector<std::unique_ptr<SoField>> interfaceFields;
  tessel::SoRef<VrmlGroup> body;
  std::vector<Mapping> isMappings;
  mutable std::unique_ptr<tessel::BodyMap> bodyMap;  // made when the first instance asks
  std::unique_ptr<VrmlProtoDict> innerDict;
  std::vector<tessel::SoRef<VrmlProtoDef>> uses;  // whose instances stand in the body or the interface
  std::uint64_t bodyNodes = 0;
  std::uint64_t expandedNodes = 0;
  int expandedLevels = 0;
  int bodyLevels = 0;
};
