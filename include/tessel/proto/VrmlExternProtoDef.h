// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/proto/VrmlProtoDef.h>

#include <map>

#include <Inventor/SbBasic.h>
#include <Inventor/SbString.h>
#include <Inventor/fields/SoMFString.h>

class VrmlExternProtoInline;

/// A prototype whose body is in another file: the interface, and where to look for the body.
///
/// Instances can be made and routed at once; they are empty until the host has brought the file.
class TESSEL_API VrmlExternProtoDef : public tessel::NodeClass<VrmlExternProtoDef, VrmlProtoDef> {
public:
  static constexpr const char* fileFormatName = "XXXX_ExternProtoDef_XXXX";
  static std::span<const tessel::FieldSpec> fields();
  /// Also enters the EXTERNPROTO statement with the reader.
  static void initClass();

  /// Alternatives, the best first, each with "#" and a name at its end for a certain prototype of the file.
  /// No field of the interface.
  SoMFString url;
  SbString
      baseURL;  ///< what relative URLs are resolved against: that of the library when the definition was made

  VrmlExternProtoDef();

  /// Reads what follows the word EXTERNPROTO, and enters the definition in its scope. 0 after a report.
  static int read(tessel::WorldReader& reader);
  /// Name, interface and URLs.
  int readContents(tessel::WorldReader& reader) override;

  /// Completes an instance, at once if the real definition is there, else when it comes. The first that needs it asks
  /// for the file.
  void getDefinition(VrmlProtoUse* use);
  /// The same for an instance in a certain place.
  void getDefinition(VrmlProtoUse* use, const tessel::InstancePlace& place);
  /// The real definition has come: completes all that wait for it, the last first. One that is itself external is
  /// followed to its own. One whose instances would have instances of this one in them is refused with a message.
  void setDefinition(VrmlProtoDef* definition);
  /// Whether a definition may be the real one: one that leads back here never comes to an end.
  bool canBecome(const VrmlProtoDef& definition) const;
  /// The real definition, null while it is not known.
  VrmlProtoDef* getRealDefinition() const { return realDef.get(); }
  /// For each field of the interface, in order, its index in a definition; up to the first that the definition has not,
  /// or has with another type or kind.
  const std::vector<int>& getCounterparts(const VrmlProtoDef& definition);
  /// Lets an instance wait for the definition, if it does not yet. It need not live on.
  void addRequestor(VrmlProtoUse* use);
  void removeRequestor(VrmlProtoUse& use);
  /// Nothing more can be tried: the instances stay empty.
  virtual void fetchFailed();

protected:
  ~VrmlExternProtoDef() override;

private:
  void unfollow();
  std::vector<tessel::SoRef<VrmlExternProtoDef>> takeFollowers();
  struct Requestor;

  void addRequestor(VrmlProtoUse& use, const tessel::InstancePlace& place);

  void requestFile();
  void refuse();

  bool fetchRequested = false;
  tessel::SoRef<VrmlExternProtoDef> followed;  // whose real definition is ours
  std::vector<VrmlExternProtoDef*> followers;  // who wait for ours; they hold us, not we them
  std::uint64_t lastNumber = 0;
  tessel::SoRef<VrmlExternProtoInline> fetchInline;
  tessel::SoRef<VrmlProtoDef> realDef;
  SbUniqueId counterpartsOf = 0;  // the number of the definition that `counterparts` is of
  std::vector<int> counterparts;
  std::map<std::uint64_t, Requestor> requestors;  // by their numbers: in the order of coming
};
