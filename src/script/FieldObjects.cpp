// SPDX-License-Identifier: BSD-3-Clause
// The field objects by their types.
#include <Inventor/fields/SoSFString.h>

#include "script/GlobalVar.h"
#include "script/VsField.h"
#include "script/VsSFString.h"

namespace tessel::script {

Value newFieldObject(Type type) {
  if (type == Type::sfString) return VsSFString::make({});
  return {};
}

Value fieldObjectOver(SoField& field, bool keepsNode) {
  const Type type = typeOf(field);
  if (type == Type::sfString) return {type, new VsSFString(static_cast<SoSFString&>(field), keepsNode)};
  return {};
}

}  // namespace tessel::script
