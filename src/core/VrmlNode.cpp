// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/core/VrmlNode.h>

#include <cstdlib>

#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/errors/SoReadError.h>
#include <Inventor/fields/SoMField.h>
#include <Inventor/lists/SoFieldList.h>

#include <tessel/actions/VrmlCollideAction.h>
#include <tessel/actions/VrmlCountAction.h>
#include <tessel/actions/VrmlPreTraverseAction.h>
#include <tessel/core/VrmlSFNode.h>
#include <tessel/toolkit/Scoped.h>

#include "core/EventWatch.h"
#include "core/FieldSpec.h"
#include "core/Loops.h"
#include "core/WorldReader.h"
#include "toolkit/TypeNames.h"

SO_NODE_ABSTRACT_SOURCE(VrmlNode);

int VrmlNode::optimizedNotify = 0;

namespace {
bool deepCopying = false;
}

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

void VrmlNode::collisionDetect(VrmlCollideAction*) {}
void VrmlNode::count(VrmlCountAction*) {}
void VrmlNode::doPreTraverse(VrmlPreTraverseAction*) {}
int VrmlNode::isProtoOfType(const SoType&, int) { return 0; }
void VrmlNode::notifyContainerOnly(const SoField*) {}
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

void VrmlNode::discountReference() {
  ++discounted;
  unrefNoDelete();
}

void VrmlNode::destroy() {
  for (; discounted > 0; --discounted) ref();
  if (getRefCount() > 0)
    tessel::releaseLater(*this);
  else
    inherited::destroy();
}

bool VrmlNode::readBody(tessel::WorldReader& reader) {
  const tessel::NotifyOff silence(static_cast<SoNode&>(*this));
  return reader.readFields(*this);
}

void VrmlNode::notify(SoNotList* list) {
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
  const tessel::ScopedValue<bool> copying(deepCopying, true);
  const int before = VrmlSFNode::setFixCopy(1);
  SoNode* copy = node->copy(copyConnections != 0);
  VrmlSFNode::setFixCopy(before);
  return copy;
}

bool VrmlNode::isDoingDeepCopy() { return deepCopying; }

SoNode* VrmlNode::addToCopyDict() const {
  if (SoFieldContainer* copied = checkCopy(this)) return static_cast<SoNode*>(copied);
  SoNode* copy = inherited::addToCopyDict();
  if (!deepCopying) return copy;
  SoFieldList fields;
  getFields(fields);
  for (int i = 0; i < fields.getLength(); ++i) {
    if (fields[i]->isOfType(SoSFNode::getClassTypeId())) {
      if (const SoNode* value = static_cast<SoSFNode*>(fields[i])->getValue()) value->addToCopyDict();
    } else if (fields[i]->isOfType(SoMFNode::getClassTypeId())) {
      const SoMFNode& list = *static_cast<SoMFNode*>(fields[i]);
      for (int n = 0; n < list.getNum(); ++n)
        if (list[n]) list[n]->addToCopyDict();
    }
  }
  return copy;
}
