// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <Inventor/SbName.h>

#include <tessel/core/FieldKind.h>

#include "core/ValueType.h"

class SoField;
class SoFieldContainer;

namespace tessel {

/// The interface of a prototype: what its fields and events are called and are. One for all its instances.
class ProtoInterface {
public:
  struct Item {
    SbName name;
    FieldKind kind;
    ValueType type;
    std::size_t offset;  // of the field in the block of an instance

    /// Whether it holds a value of its own: events do not.
    bool hasValue() const { return kind == FieldKind::field || kind == FieldKind::exposedField; }
    bool holdsNodes() const { return type == ValueType::sfNode || type == ValueType::mfNode; }
    bool sendsIn() const { return kind != FieldKind::eventOut; }
    bool sendsOut() const { return kind == FieldKind::eventOut || kind == FieldKind::exposedField; }
  };

  int size() const { return static_cast<int>(items.size()); }
  const Item& operator[](int index) const { return items[static_cast<std::size_t>(index)]; }
  auto begin() const { return items.begin(); }
  auto end() const { return items.end(); }

  /// False if the name is taken.
  bool add(std::string_view name, FieldKind kind, ValueType type);
  /// The index of a name, -1 if there is none.
  int find(std::string_view name) const;
  std::size_t blockSize() const { return bytes; }

private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view name) const noexcept {
      return std::hash<std::string_view>{}(name);
    }
  };

  std::vector<Item> items;
  std::unordered_map<std::string, int, Hash, std::equal_to<>> indices;
  std::size_t bytes = 0;
};

/// The fields that an instance of a prototype has, in one block of memory.
class InstanceFields {
public:
  InstanceFields() = default;
  /// Makes the fields of an interface, each with a value of `values` (in the order of the interface).
  InstanceFields(const ProtoInterface& interface, SoFieldContainer& owner,
                 const std::function<const SoField&(int)>& values);
  ~InstanceFields() { clear(); }
  InstanceFields(InstanceFields&& other) noexcept;
  InstanceFields& operator=(InstanceFields&& other) noexcept;

  explicit operator bool() const { return interface != nullptr; }
  int size() const { return interface ? interface->size() : 0; }
  const ProtoInterface::Item& item(int index) const { return (*interface)[index]; }
  int find(std::string_view name) const { return interface ? interface->find(name) : -1; }
  SoField& operator[](int index) const;
  /// The index of a field of the block, -1 for any other field.
  int indexOf(const SoField* field) const;
  void clear();

private:
  const ProtoInterface* interface = nullptr;
  std::unique_ptr<std::byte[]> block;
};

}  // namespace tessel
