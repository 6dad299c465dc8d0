// SPDX-License-Identifier: BSD-3-Clause
#include "toolkit/TypeNames.h"

#include <Inventor/SbName.h>
#include <Inventor/engines/SoEngine.h>
#include <Inventor/fields/SoField.h>
#include <Inventor/lists/SoTypeList.h>
#include <Inventor/nodes/SoNode.h>

namespace tessel {

void TypeNames::add(std::string_view fileFormatName, SoType type) {
  entries.insert_or_assign(std::string(fileFormatName),
                           Entry{type.canCreateInstance() ? Meaning::node : Meaning::abstractNode, type});
}

void TypeNames::addForeignTypes() {
  auto addDerived = [this](SoType root, bool isNode) {
    SoTypeList types;
    SoType::getAllDerivedFrom(root, types);
    for (int i = 0; i < types.getLength(); ++i) {
      const Meaning meaning = !isNode                        ? Meaning::notANode
                              : types[i].canCreateInstance() ? Meaning::foreignNode
                                                             : Meaning::abstractForeign;
      entries.try_emplace(types[i].getName().getString(), Entry{meaning, types[i]});
    }
  };
  addDerived(SoNode::getClassTypeId(), true);
  addDerived(SoEngine::getClassTypeId(), true);
  addDerived(SoField::getClassTypeId(), false);
}

TypeNames::Entry TypeNames::find(std::string_view name) const {
  const auto found = entries.find(name);
  return found == entries.end() ? Entry{Meaning::unknown, SoType::badType()} : found->second;
}

TypeNames& typeNames() {
  static TypeNames names;
  return names;
}

}  // namespace tessel
