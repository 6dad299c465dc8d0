// SPDX-License-Identifier: BSD-3-Clause
#include "script/VsField.h"

#include <Inventor/fields/SoField.h>
#include <Inventor/fields/SoFieldContainer.h>

namespace tessel::script {

VsField::VsField(SoField* field, bool keepsNode)
    : field(field), node(keepsNode ? field->getContainer() : nullptr) {
  if (node) node->ref();
}

VsField::~VsField() {
  if (node) node->unref();
}

}  // namespace tessel::script
