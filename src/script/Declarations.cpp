// SPDX-License-Identifier: BSD-3-Clause
#include "script/Declarations.h"

#include <cstddef>

namespace tessel::script {

Declarations::Declarations(SoFieldContainer& node, const SoFieldData& ofClass)
    : node(node), ofClass(ofClass), all(std::make_unique<SoFieldData>(ofClass)) {}

const Declarations::Declared& Declarations::add(FieldKind kind, ValueType type, const SbName& name) {
  std::unique_ptr<SoField> field(newField(type));
  field->setContainer(&node);
  return enter({name, kind, std::move(field), -1});
}

const Declarations::Declared& Declarations::enter(Declared declared) {
  const int before = all->getNumFields();
  all->addField(&node, declared.name.getString(), declared.field.get());
  const bool isNew = all->getNumFields() > before;  // a name that is taken is not entered
  declared.index = isNew ? before : -1;
  if (!isNew) declared.kind = FieldKind::internal;
  const int number = static_cast<int>(list.size());
  if (isNew) byName.add(declared.name.getString(), number);
  byAddress.add(declared.field.get(), {declared.kind, valueTypeOf(*declared.field), declared.index, number});
  return list.emplace_back(std::move(declared));
}

// The toolkit's tables only grow, so all others are entered anew.
bool Declarations::remove(const SbName& name) {
  const auto* found = byName.find(name.getString());
  if (!found) return false;
  const int number = found->second;
  std::vector<Declared> others = std::exchange(list, {});
  const Declared removed =
      std::move(others[static_cast<std::size_t>(number)]);  // goes when the table is without it
  others.erase(others.begin() + number);
  all = std::make_unique<SoFieldData>(ofClass);
  byName.clear();
  byAddress.clear();
  for (Declared& one : others) enter(std::move(one));
  return true;
}

}  // namespace tessel::script
