// SPDX-License-Identifier: BSD-3-Clause
#include "proto/ProtoInterface.h"

#include <algorithm>
#include <utility>

#include <Inventor/fields/SoField.h>

namespace tessel {

bool ProtoInterface::add(std::string_view name, FieldKind kind, ValueType type) {
  if (!indices.try_emplace(std::string(name), size()).second) return false;
  items.push_back({SbName(std::string(name).c_str()), kind, type, bytes});
  constexpr std::size_t step = alignof(std::max_align_t);
  bytes += (fieldSize(type) + step - 1) / step * step;
  return true;
}

int ProtoInterface::find(std::string_view name) const {
  const auto found = indices.find(name);
  return found == indices.end() ? -1 : found->second;
}

InstanceFields::InstanceFields(const ProtoInterface& i, SoFieldContainer& owner,
                               const std::function<const SoField&(int)>& values)
    : interface(&i), block(std::make_unique<std::byte[]>(i.blockSize())) {
  for (int n = 0; n < i.size(); ++n) {
    SoField* field = makeFieldAt(i[n].type, block.get() + i[n].offset);
    field->copyFrom(values(n));  // before it has a container: nobody is told
    field->setDefault(TRUE);
    field->setContainer(&owner);
  }
}

InstanceFields::InstanceFields(InstanceFields&& other) noexcept
    : interface(std::exchange(other.interface, nullptr)), block(std::move(other.block)) {}

InstanceFields& InstanceFields::operator=(InstanceFields&& other) noexcept {
  std::swap(interface, other.interface);
  std::swap(block, other.block);
  return *this;
}

void InstanceFields::clear() {
  if (!block) return;
  for (int n = size() - 1; n >= 0; --n) (*this)[n].~SoField();
  block.reset();
  interface = nullptr;
}

SoField& InstanceFields::operator[](int index) const {
  return *reinterpret_cast<SoField*>(block.get() + item(index).offset);
}

int InstanceFields::indexOf(const SoField* field) const {
  if (!block) return -1;
  const auto* place = reinterpret_cast<const std::byte*>(field);
  const std::less<const std::byte*> before;
  if (before(place, block.get()) || !before(place, block.get() + interface->blockSize())) return -1;
  const auto offset = static_cast<std::size_t>(place - block.get());
  const auto found =
      std::lower_bound(interface->begin(), interface->end(), offset,
                       [](const ProtoInterface::Item& item, std::size_t o) { return item.offset < o; });
  return found != interface->end() && found->offset == offset ? static_cast<int>(found - interface->begin())
                                                              : -1;
}

}  // namespace tessel
