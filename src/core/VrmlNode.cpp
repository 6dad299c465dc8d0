// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/core/VrmlNode.h>

#include <cstdlib>
#include <unordered_map>

#include <Inventor/SoDB.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/errors/SoDebugError.h>
#include <Inventor/errors/SoReadError.h>
#include <Inventor/fields/SoFieldData.h>
#include <Inventor/fields/SoMField.h>
#include <Inventor/lists/SoFieldList.h>
#include <Inventor/misc/SoNotification.h>

#include <tessel/actions/VrmlCollideAction.h>
#include <tessel/actions/VrmlCountAction.h>
#include <tessel/actions/VrmlPreTraverseAction.h>
#include <tessel/core/VrmlSFNode.h>
#include <tessel/toolkit/Scoped.h>
#include <tessel/toolkit/SoRef.h>

#include "core/DeepCopy.h"
#include "core/Effort.h"
#include "core/EventWatch.h"
#include "core/FieldSpec.h"
#include "core/LateRelease.h"
#include "core/Loops.h"
#include "core/StackRoom.h"
#include "core/WorldReader.h"
#include "toolkit/TypeNames.h"

SO_NODE_ABSTRACT_SOURCE(VrmlNode);

int VrmlNode::optimizedNotify = 0;
const VrmlNode* VrmlNode::copyTarget = nullptr;

void VrmlNode::initClass() {
  SO_NODE_INIT_ABSTRACT_CLASS(VrmlNode, SoNode, "Node");
  // The toolkit would call `pick` and never `rayPick` for classes that it does not know.
  SoRayPickAction::addMethod(getClassTypeId(), SoNode::rayPickS);
  // Its part in our own traversals. A method of an action gets no more exact type than SoAction.
  VrmlPreTraverseAction::addMethod(getClassTypeId(), [](SoAction* action, SoNode* node) {
    static_cast<VrmlNode*>(node)->doPreTraverse(static_cast<VrmlPreTraverseAction*>(action));
  });
  VrmlCountAction::addMethod(getClassTypeId(), [](SoAction* action, SoNode* node) {
    static_cast<VrmlNode*>(node)->count(static_cast<VrmlCountAction*>(action));
  });
  VrmlCollideAction::addMethod(getClassTypeId(), [](SoAction* action, SoNode* node) {
    static_cast<VrmlNode*>(node)->collisionDetect(static_cast<VrmlCollideAction*>(action));
  });
  tessel::typeNames().add(fileFormatName, getClassTypeId());
}

VrmlNode::VrmlNode() {
  SO_NODE_CONSTRUCTOR(VrmlNode);
  isBuiltIn = TRUE;
}

VrmlNode::~VrmlNode() {
  if (tessel::EventWatch::any()) tessel::EventWatch::tellGone(*this);
}

const char* VrmlNode::getFileFormatName() const { return fileFormatName; }

const SbName& VrmlNode::getDefName() const { return def ? def->name : SbName::empty(); }

void VrmlNode::setDef(tessel::DefName name) { def = std::make_unique<tessel::DefName>(std::move(name)); }

// How many living nodes have got each name. It outlives all nodes, those of static objects too.
static std::unordered_map<const char*, int>& numNamed() {
  static auto& numbers = *new std::unordered_map<const char*, int>;
  return numbers;
}

void VrmlNode::nameInToolkit(const SbName& name) {
  constexpr int most = 10000;
  forgetName();
  int& count = numNamed()[name.getString()];
  if (count == most) return;
  ++count;
  isNamed = true;
  setName(name);
}

void VrmlNode::forgetName() {
  if (!isNamed) return;
  isNamed = false;
  const auto found = numNamed().find(getName().getString());  // a host may have given another
  if (found != numNamed().end() && --found->second == 0) numNamed().erase(found);
}

void VrmlNode::collisionDetect(VrmlCollideAction*) {}
void VrmlNode::count(VrmlCountAction*) {}
void VrmlNode::doPreTraverse(VrmlPreTraverseAction*) {}
int VrmlNode::isProtoOfType(const SoType&, int) { return 0; }
std::uint32_t VrmlNode::getKidType() { return kidType; }
int VrmlNode::hasKidType(int mask) {
  return static_cast<int>(getKidType() & static_cast<std::uint32_t>(mask));
}
int VrmlNode::getFieldType(const SoField*) const { return static_cast<int>(tessel::FieldKind::internal); }
int VrmlNode::isVrmlRoute(const SoField*, const SoField*) const { return 1; }
int VrmlNode::isSpatial() const { return 1; }
VrmlNode* VrmlNode::strictVrmlReplacement() { return this; }
int VrmlNode::shouldRenderBeforeOtherChildren() const { return 0; }
int VrmlNode::shouldCopyFieldConnection(const SoField*) const { return 1; }
bool VrmlNode::holdsChildren() const { return false; }
bool VrmlNode::isGeometricSensor() const { return false; }
bool VrmlNode::isSensorEnabled() const { return false; }
void VrmlNode::ignoreGrabRelease() {}
bool VrmlNode::holdsNodesWeakly() const { return false; }
const tessel::FieldSpec* VrmlNode::findField(std::string_view) const { return nullptr; }

// As if the field was set while the node was read.
void VrmlNode::notifyContainerOnly(const SoField* field) {
  const tessel::NotifyOff silence(static_cast<SoNode&>(*this));
  SoNotRec record(this);
  record.setType(SoNotRec::CONTAINER);
  SoNotList list;
  list.append(&record, const_cast<SoField*>(field));
  notify(&list);
}

void VrmlNode::discountReference() {
  ++discounted;
  unrefNoDelete();
}

void VrmlNode::destroy() {
  if (SoDB::isNotifying()) return tessel::releaseAfterNotification(*this);
  for (; discounted > 0; --discounted) ref();
  if (getRefCount() > 0) {
    tessel::releaseLater(*this);
  } else {
    forgetName();
    enableNotify(FALSE);  // what goes with it may send it a last event
    inherited::destroy();
  }
}

bool VrmlNode::readBody(tessel::WorldReader& reader) {
  const tessel::NotifyOff silence(static_cast<SoNode&>(*this));
  return reader.readFields(*this);
}

// The toolkit calls itself from route to route, and looks at a field's connections when its node has been told.
static void endChainOfRoutes(const VrmlNode& node, const SoNotList& list) {
  SoField* field = list.getLastField();
  if (!field || field->getContainer() != &node) return;
  SoFieldList ends;
  if (field->getForwardConnections(ends) == 0) return;
  for (int i = 0; i < ends.getLength(); ++i) ends[i]->disconnect(field);
  SbName name;
  node.findFieldName(field, name);
  SoDebugError::post("VrmlNode::notify",
                     "A chain of routes is too long: it ends at \"%s\" of \"%s\" from now on",
                     name.getString(), node.getDefName().getString());
}

void VrmlNode::notify(SoNotList* list) {
  if (tessel::stackIsShort()) [[unlikely]]
    endChainOfRoutes(*this, *list);
  tessel::Effort::addHearer();
  tessel::EventWatch::tellSent(*this, *list);
  static const bool optimized = std::getenv("TV_OPTIMIZE_NOTIFICATION") != nullptr;
  if (optimized && list->getTimeStamp() <= getNodeId()) return;
  inherited::notify(list);
}

SbBool VrmlNode::readInstance(SoInput* in, unsigned short) {
  SoReadError::post(in, "\"%s\" is read by VrmlDB::read only", getFileFormatName());
  return FALSE;
}

void VrmlNode::initializeField(SoField* field) {
  const tessel::ValueType type = tessel::valueTypeOf(*field);
  if (type == tessel::ValueType::count) return;
  if (type == tessel::ValueType::children)
    static_cast<VrmlMFChildren*>(field)->setValue(nullptr);
  else
    tessel::setToDefault(
        *field,
        {.name = {}, .kind = tessel::FieldKind::internal, .type = type, .in = nullptr, .initial = {}});
}

SoNode* VrmlNode::deepCopy(const VrmlNode* node, int copyConnections) {
  tessel::SoRef<SoNode> copy;
  {
    tessel::DeepCopy copying(copyConnections != 0);
    copying.add(*node);
    copy.reset(copying.of(node));
  }
  return copy.release();
}

bool VrmlNode::isDoingDeepCopy() { return tessel::DeepCopy::current() != nullptr; }

void VrmlNode::copyContents(const SoFieldContainer* from, SbBool copyConnections) {
  const tessel::ScopedValue<const VrmlNode*> taking(copyTarget, this);
  const auto& original = *static_cast<const VrmlNode*>(from);
  if (tessel::DeepCopy* copying = tessel::DeepCopy::current()) {
    copying->copyFields(original, *this);
    if (const SbName& name = original.getName(); name != SbName::empty()) nameInToolkit(name);
    if (original.isOverride()) setOverride(TRUE);
  } else {
    for (int i = 0; SoField* field = getFieldAt(i); ++i)  // the toolkit leaves that out
      field->enableConnection(original.getFieldData()->getField(from, i)->isConnectionEnabled());
    inherited::copyContents(from, copyConnections);
  }
  if (const auto* name = original.getDef()) setDef(*name);
}

SoFieldContainer* VrmlNode::copyThroughConnection() const {
  if (!isDoingDeepCopy()) return inherited::copyThroughConnection();
  SoFieldContainer* copy = tessel::DeepCopy::findCopy(this, true);
  return copy ? copy : const_cast<VrmlNode*>(this);
}

SoField* VrmlNode::getRouteEnd(const SbName& name, bool) { return getField(name); }
int VrmlNode::getFieldIndex(const SoField* field) const {
  const SoFieldData* all = getFieldData();
  return all ? all->getIndex(this, field) : -1;
}

SoField* VrmlNode::getFieldAt(int index) {
  const SoFieldData* all = getFieldData();
  return all && index >= 0 && index < all->getNumFields() ? all->getField(this, index) : nullptr;
}

void VrmlNode::listFields(SoFieldList& list) const { getFields(list); }
bool VrmlNode::findFieldName(const SoField* field, SbName& name) const { return getFieldName(field, name); }
void VrmlNode::listHeldNodes(std::vector<SoNode*>&) const {}

SoNode* VrmlNode::addToCopyDict() const {
  tessel::DeepCopy* copying = tessel::DeepCopy::current();
  if (!copying) return inherited::addToCopyDict();
  if (SoFieldContainer* copied = tessel::DeepCopy::checkCopy(this)) return static_cast<SoNode*>(copied);
  auto* copy = static_cast<SoNode*>(getTypeId().createInstance());
  tessel::DeepCopy::enter(this, copy, false);
  copying->addFields(*this);
  return copy;
}
