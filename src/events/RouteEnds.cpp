// SPDX-License-Identifier: BSD-3-Clause
#include "events/RouteEnds.h"

#include <Inventor/fields/SoField.h>

#include <tessel/core/VrmlNode.h>

namespace tessel {

VrmlNode* vrmlNodeOf(const SoField* field) {
  SoFieldContainer* container = field->getContainer();
  if (!container || !container->isOfType(VrmlNode::getClassTypeId())) return nullptr;
  return static_cast<VrmlNode*>(container);
}

FieldKind kindOf(const SoField* field) {
  const VrmlNode* node = vrmlNodeOf(field);
  return node ? static_cast<FieldKind>(node->getFieldType(field)) : FieldKind::internal;
}

SbName fieldName(const SoField& field) {
  SbName name = SbName::empty();
  if (const VrmlNode* node = vrmlNodeOf(&field))
    node->findFieldName(&field, name);
  else if (const SoFieldContainer* container = field.getContainer())
    container->getFieldName(&field, name);
  return name;
}

std::string givenName(const SoBase& base) {
  if (base.isOfType(VrmlNode::getClassTypeId())) {
    const SbName& exact = static_cast<const VrmlNode&>(base).getDefName();
    if (exact.getLength() > 0) return exact.getString();
  }
  return base.getName().getString();
}

}  // namespace tessel
