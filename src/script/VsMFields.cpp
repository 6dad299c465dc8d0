// SPDX-License-Identifier: BSD-3-Clause
#include "script/VsMFields.h"

#include <algorithm>
#include <string>
#include <utility>

#include "core/Effort.h"
#include "script/VsSFNode.h"
#include "script/VsSFString.h"

namespace tessel::script {
namespace {

void missing(std::int32_t i, int count) {
  VsError::postRuntimeError("%s %d %s %d)", RTE_EXPR_NO_MF_ELEMENT, i, RTE_EXPR_LENGTH, count);
}

}  // namespace

template <class Traits> bool VsMField<Traits>::has(std::int32_t i) const {
  const int n = count();
  if (i >= 0 && i < n) return true;
  missing(i, n);
  return false;
}

template <class Traits> bool VsMField<Traits>::resizeOwn(std::size_t n) {
  if (n > own.capacity()) {
    const std::size_t size = std::max(n, own.capacity() * 2);
    if (!room.has(size * sizeof(Stored))) return false;
    own.reserve(size);
    room.take(own.capacity() * sizeof(Stored));
  }
  if (n > own.size()) Effort::add((n - own.size()) * sizeof(Stored));
  own.resize(n, Traits::neutral());
  return true;
}

// Into the field. What it holds then counts as memory that the script has taken.
template <class Traits> bool VsMField<Traits>::write(int first, std::span<const Stored> values) {
  if constexpr (requires { Traits::bytesAt(live(), first); }) {
    std::size_t size = 0;
    for (const Stored& value : values) size += Traits::bytesOf(value);
    Effort::add(size);
    Room& taken = roomFor(room, room.size() + size);
    size += taken.size();
    const int end = std::min(count(), first + static_cast<int>(values.size()));
    for (int i = first; i < end; ++i) size -= std::min(size, Traits::bytesAt(live(), i));
    if (!taken.has(size)) return false;
    taken.take(size);
  } else {
    const std::size_t size =
        std::max(static_cast<std::size_t>(count()), static_cast<std::size_t>(first) + values.size()) *
        Traits::bytesInField;
    Room& taken = roomFor(room, size);
    if (!taken.has(size)) return false;
    taken.take(size);
  }
  Effort::addChange();
  Effort::add(values.size_bytes());
  return Traits::set(live(), first, values);
}

template <class Traits> void VsMField<Traits>::cut(int n) {
  if constexpr (requires { Traits::bytesAt(live(), n); }) {
    Room& taken = roomFor(room, 0);
    std::size_t size = taken.size();
    for (int i = n; i < count(); ++i) size -= std::min(size, Traits::bytesAt(live(), i));
    taken.take(size);
  } else {
    const std::size_t size = static_cast<std::size_t>(n) * Traits::bytesInField;
    roomFor(room, size).take(size);
  }
  Effort::addChange();
  Traits::truncate(live(), n);
}

// A gap before the new value is filled in the same event.
template <class Traits> bool VsMField<Traits>::put(std::int32_t i, const Stored& value) {
  const auto place = static_cast<std::size_t>(i);
  if (i < 0 || i >= Traits::most) {
    missing(i, count());
    return false;
  }
  if (!liveField()) {
    if (place >= own.size() && !resizeOwn(place + 1)) return false;
    own[place] = value;
    return true;
  }
  const int n = count();
  if (i <= n) return write(i, {&value, 1});
  const std::size_t size = (place + 1) * sizeof(Stored);
  if (!roomFor(room, size).has(size)) return false;
  std::vector<Stored> more(place - static_cast<std::size_t>(n) + 1, Traits::neutral());
  more.back() = value;
  return write(n, more);
}

template <class Traits> bool VsMField<Traits>::setCount(std::int32_t n) {
  const int before = count();
  if (n < 0 || n > Traits::most) {
    missing(n, before);
    return false;
  }
  if (!liveField()) return resizeOwn(static_cast<std::size_t>(n));
  if (n > before) return put(n - 1, Traits::neutral());
  cut(n);
  return true;
}

// One event, whatever changes.
template <class Traits> void VsMField<Traits>::postExecute(const Value& current) {
  const auto& source = *static_cast<const VsMField*>(current.object());
  Field& field = live();
  const auto replace = [this, &field](std::span<const Stored> values) {
    const int n = static_cast<int>(values.size());
    if (n >= Traits::count(field)) {
      write(0, values);
      return;
    }
    if (n > 0) {
      const NotifyOff silence(static_cast<SoField&>(field));
      if (!write(0, values)) return;
    }
    cut(n);
  };
  if (source.liveField())
    replace(Traits::values(source.live()));
  else
    replace(source.own);
}

template <class Traits> bool VsMField<Traits>::append(const Value& newValue) {
  if (!Traits::fits(newValue, false)) {
    FieldErrors::allArgError(Traits::name, Traits::kind);
    return false;
  }
  return put(count(), Traits::from(newValue));
}

template <class Traits>
bool VsMField<Traits>::copyVector(Value& target, [[maybe_unused]] std::int32_t element) const {
  if constexpr (isOfVectors) {
    if (element >= 0 && element < count()) {
      Traits::Single::setResult(target, at(element));
      return true;
    }
    if (target.type() != Traits::Single::ofType) target = newFieldObject(Traits::Single::ofType);
  }
  return false;
}

template <class Traits> void VsMField<Traits>::give(Value& result, std::int32_t i) {
  if constexpr (isOfVectors) {
    if (result.type() != Traits::elementType || result.object() != this || result.element() != i)
      result = Value(Traits::elementType, this, i);
  } else {
    Traits::give(result, at(i));
  }
}

template <class Traits>
void VsMField<Traits>::getElement(Value& result, [[maybe_unused]] std::int32_t element, std::int32_t i) {
  if constexpr (isOfVectors)
    if (element >= 0) {
      if (Traits::Single::hasComponent(i) && has(element))
        result.setFloat(Traits::Components::component(at(element), i));
      return;
    }
  if (has(i)) give(result, i);
}

template <class Traits>
bool VsMField<Traits>::setElement(Value& result, [[maybe_unused]] std::int32_t element, std::int32_t i,
                                  const Value& newValue) {
  if constexpr (isOfVectors)
    if (element >= 0) {
      if (!Traits::Single::isComponent(newValue) || !Traits::Single::hasComponent(i) || !has(element))
        return false;
      Stored vector = at(element);
      const float x = newValue.getFloat();
      Traits::Components::setComponent(vector, i, x);
      put(element, vector);
      result.setFloat(x);
      return true;
    }
  if (!Traits::fits(newValue, true)) {
    VsError::postRuntimeError("%s", Traits::badElement);
    return false;
  }
  if (!put(i, Traits::from(newValue))) return false;
  if (i < count()) give(result, i);
  return true;
}

template <class Traits>
void VsMField<Traits>::memberEvaluate(Value& result, Property property, std::string_view name) {
  if (property == Property::length) return result.setInt(count());
  VsError::postRuntimeError("%s %s", RTE_FLD_UNKNOWN_MF_ACCESS, std::string(name).c_str());
}

template <class Traits>
void VsMField<Traits>::memberAssign(Value& holder, Property property, std::string_view name,
                                    const Value& newValue) {
  const std::string text(name);
  if (!newValue.isScalar())
    return VsError::postRuntimeError("%s %s %s", RTE_FLD_NUMERIC_ASSIGN, text.c_str(), RTE_FLD_MF_PROP);
  if (property != Property::length)
    return VsError::postRuntimeError("%s %s", RTE_FLD_UNKNOWN_MF_ASSIGN, text.c_str());
  const std::int32_t n = newValue.getInt();
  if (setCount(n)) holder.setInt(n);
}

SharedText MFStringTraits::from(const Value& value) {
  return static_cast<const VsSFString*>(value.object())->text();
}
void MFStringTraits::give(Value& result, Stored value) { VsSFString::setResult(result, std::move(value)); }
SharedText MFStringTraits::at(const Field& field, int i) { return SharedText(field[i].getString()); }

std::vector<SharedText> MFStringTraits::values(const Field& field) {
  std::vector<SharedText> list;
  list.reserve(static_cast<std::size_t>(field.getNum()));
  for (int i = 0; i < field.getNum(); ++i) list.push_back(at(field, i));
  return list;
}

// Short strings are bounded by their number.
bool MFStringTraits::set(Field& field, int first, std::span<const Stored> values) {
  constexpr std::size_t shortLength = 256;
  std::size_t characters = 0;
  bool areShort = true;
  for (const SharedText& text : values) {
    characters += text.size();
    areShort = areShort && text.size() <= shortLength;
  }
  if (!areShort)
    for (int i = 0; i < field.getNum(); ++i)
      if (i < first || i - first >= static_cast<int>(values.size()))
        characters += static_cast<std::size_t>(field[i].getLength());
  Effort::add(characters);
  if (characters > mostCharacters) {
    VsError::postRuntimeError("Attempt to put more than %zu characters into a MFString", mostCharacters);
    return false;
  }
  std::vector<SbString> strings;
  strings.reserve(values.size());
  for (const SharedText& text : values) strings.emplace_back(std::string(text.view()).c_str());
  field.setValues(first, static_cast<int>(strings.size()), strings.data());
  return true;
}

SoRef<SoNode> MFNodeTraits::from(const Value& value) { return Stored(VsSFNode::nodeOf(value)); }
void MFNodeTraits::give(Value& result, const Stored& value) { VsSFNode::setResult(result, value.get()); }

template class VsMField<MFInt32Traits>;
template class VsMField<MFFloatTraits>;
template class VsMField<MFStringTraits>;
template class VsMField<MFNodeTraits>;
template class VsMField<MFVec2fTraits>;
template class VsMField<MFVec3fTraits>;
template class VsMField<MFColorTraits>;
template class VsMField<MFRotationTraits>;

}  // namespace tessel::script
