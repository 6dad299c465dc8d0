// SPDX-License-Identifier: BSD-3-Clause
#include "script/Declarations.h"

#include <algorithm>
#include <functional>

namespace tessel::script {

static bool isBefore(const std::pair<const void*, int>& one, const void* address) {
  return std::less<>()(one.first, address);
}

void Declarations::Numbers::add(const void* address, int number) {
  sorted.insert(std::lower_bound(sorted.begin(), sorted.end(), address, isBefore), {address, number});
}

int Declarations::Numbers::find(const void* address) const {
  const auto found = std::lower_bound(sorted.begin(), sorted.end(), address, isBefore);
  return found == sorted.end() || found->first != address ? -1 : found->second;
}

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
  byAddress.add(declared.field.get(), number);
  return list.emplace_back(std::move(declared));
}

// The toolkit's tables only grow, so all others are entered anew.
bool Declarations::remove(const SbName& name) {
  const int number = byName.find(name.getString());
  if (number < 0) return false;
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
