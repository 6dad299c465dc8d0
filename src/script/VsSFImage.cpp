// SPDX-License-Identifier: BSD-3-Clause
#include "script/VsSFImage.h"

#include <algorithm>
#include <vector>

#include <tessel/script/RuntimeErrors.h>

#include "core/Effort.h"
#include "script/FieldErrors.h"
#include "script/VsError.h"
#include "script/VsMFields.h"

namespace tessel::script {

struct PictureShape {
  std::int32_t numbers[3];  // width, height, components

  explicit PictureShape(const SoSFImage& image) {
    SbVec2s size;
    int components = 0;
    image.getValue(size, components);
    numbers[0] = size[0];
    numbers[1] = size[1];
    numbers[2] = components;
  }
  PictureShape(std::int32_t width, std::int32_t height, std::int32_t components)
      : numbers{width, height, components} {}

  std::size_t pixels() const {
    return static_cast<std::size_t>(numbers[0]) * static_cast<std::size_t>(numbers[1]);
  }
  std::size_t components() const { return static_cast<std::size_t>(numbers[2]); }
  std::size_t bytes() const { return pixels() * components(); }

  bool isBounded() const {
    constexpr std::int32_t limits[] = {32767, 32767, 4};
    constexpr std::size_t maxPixels = std::size_t{1} << 24;
    bool bounded = true;
    for (int i = 0; i < 3; ++i) bounded = bounded && numbers[i] >= 0 && numbers[i] <= limits[i];
    if (bounded && pixels() <= maxPixels) return true;
    VsError::postRuntimeError("An image of %d x %d pixels with %d components is out of bounds", numbers[0],
                              numbers[1], numbers[2]);
    return false;
  }
};

namespace {

constexpr const char* className = "SFImage";

using Shape = PictureShape;
using Bytes = std::vector<unsigned char>;

const unsigned char* bytesOf(const SoSFImage& image) {
  SbVec2s size;
  int components = 0;
  return image.getValue(size, components);
}

std::size_t entriesOf(const Value& pixels) { return static_cast<std::size_t>(VsMFInt32::countOf(pixels)); }

// An entry is a pixel, with its last component in the lowest byte. Pixels without one are black.
Bytes bytesFrom(const Value& pixels, const Shape& shape) {
  Bytes bytes(shape.bytes());
  const std::size_t count = std::min(entriesOf(pixels), bytes.empty() ? 0 : shape.pixels());
  auto out = bytes.begin();
  const auto& entries = *static_cast<const VsMFInt32*>(pixels.object());
  for (std::size_t i = 0; i < count; ++i) {
    const auto pixel = static_cast<std::uint32_t>(entries.at(static_cast<int>(i)));
    for (std::size_t c = shape.components(); c-- > 0;) *out++ = static_cast<unsigned char>(pixel >> (8 * c));
  }
  return bytes;
}

// Which of the numbers of a shape a property is; -1 for none of them.
int numberOf(Property property) {
  switch (property) {
    case Property::x:
      return 0;
    case Property::y:
      return 1;
    case Property::comp:
      return 2;
    default:
      return -1;
  }
}

}  // namespace

void VsSFImage::give(const Shape& shape, const Bytes& bytes) {
  Effort::addChange();
  Effort::add(3 * bytes.size());  // made, filled, copied
  roomFor(room, bytes.size()).take(bytes.size());
  const SbVec2s size(static_cast<short>(shape.numbers[0]), static_cast<short>(shape.numbers[1]));
  image().setValue(size, shape.numbers[2], bytes.empty() ? nullptr : bytes.data());
}

void VsSFImage::postExecute(const Value& current) {
  const SoSFImage& from = static_cast<const VsSFImage*>(current.object())->image();
  SbVec2s size;
  int components = 0;
  const unsigned char* bytes = from.getValue(size, components);
  const std::size_t count = Shape(from).bytes();
  Room& taken = roomFor(room, count);
  if (!taken.has(count)) return;
  taken.take(count);
  Effort::addChange();
  Effort::add(count);
  image().setValue(size, components, bytes);
}

void VsSFImage::memberEvaluate(Value& result, Property property, std::string_view name) {
  const int number = numberOf(property);
  if (number >= 0) {
    result.setInt(Shape(image()).numbers[number]);
  } else if (property == Property::array) {
    readPixels(result);
  } else {
    FieldErrors::unknownMemberAccessError(className, name);
  }
}

void VsSFImage::readPixels(Value& result) const {
  allocField(result, Type::mfInt32);
  const Shape shape(image());
  Effort::addEach(shape.pixels());
  const unsigned char* bytes = bytesOf(image());
  const std::size_t components = bytes ? shape.components() : 0;
  Value entry;
  for (std::size_t i = 0; i < shape.pixels(); ++i) {
    std::uint32_t pixel = 0;
    for (std::size_t c = 0; c < components; ++c) pixel = pixel << 8 | *bytes++;
    entry.setInt(static_cast<std::int32_t>(pixel));
    if (!result.object()->append(entry)) return;
  }
}

void VsSFImage::memberAssign(Value& holder, Property property, std::string_view name, const Value& newValue) {
  const int number = numberOf(property);
  if (number >= 0) {
    if (!newValue.isScalar()) return FieldErrors::badNumAssignError(name, className);
    holder.setInt(newValue.getInt());
    resize(number, newValue.getInt());
  } else if (property != Property::array) {
    FieldErrors::unknownMemberAssignError(className, name);
  } else if (newValue.type() != Type::mfInt32) {
    VsError::postRuntimeError("%s", RTE_FLD_SFIMAGE_ARRAY);
  } else if (const Shape shape(image()); entriesOf(newValue) != shape.pixels()) {
    VsError::postRuntimeError("%s", RTE_FLD_SFIMAGE_PIXELS);
  } else {
    holder = newValue;
    give(shape, bytesFrom(newValue, shape));
  }
}

// The bytes stay as they are; there may be too many of them, or some black ones at their end.
void VsSFImage::resize(int number, std::int32_t value) {
  const Shape before(image());
  Shape shape = before;
  shape.numbers[number] = value;
  if (!shape.isBounded() || !roomFor(room, shape.bytes()).has(shape.bytes())) return;
  Bytes bytes(shape.bytes());
  if (const unsigned char* old = bytesOf(image()))
    std::copy_n(old, std::min(bytes.size(), before.bytes()), bytes.begin());
  give(shape, bytes);
}

void VsSFImage::constructField(Arguments arguments) {
  for (std::size_t i = 0; i < 3; ++i)
    if (!arguments[i]->isScalar()) return VsError::postRuntimeError("%s", RTE_FLD_SFIMAGE_ARG13);
  if (arguments[3]->type() != Type::mfInt32) return VsError::postRuntimeError("%s", RTE_FLD_SFIMAGE_ARG4);
  const Shape shape(arguments[0]->getInt(), arguments[1]->getInt(), arguments[2]->getInt());
  if (shape.isBounded() && room.has(shape.bytes())) give(shape, bytesFrom(*arguments[3], shape));
}

}  // namespace tessel::script
