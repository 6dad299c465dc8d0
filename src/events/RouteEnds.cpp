// SPDX-License-Identifier: BSD-3-Clause
#include "events/RouteEnds.h"

#include <Inventor/fields/SoField.h>

#include <tessel/core/VrmlNode.h>

#include "core/AsVrmlNode.h"

namespace tessel {

VrmlNode* vrmlNodeOf(const SoField* field) { return asVrmlNode(field->getContainer()); }

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
  if (const VrmlNode* node = asVrmlNode(&base)) {
    const SbName& exact = node->getDefName();
    if (exact.getLength() > 0) return exact.getString();
  }
  return base.getName().getString();
}

}  // namespace tessel
