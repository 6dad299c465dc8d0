// SPDX-License-Identifier: BSD-3-Clause
#include "core/ValueReader.h"

#include <algorithm>
#include <array>
#include <string>
#include <type_traits>
#include <vector>

#include <Inventor/errors/SoDebugError.h>
#include <Inventor/misc/SoChildList.h>

#include <tessel/core/VrmlNULL.h>
#include <tessel/core/VrmlNode.h>
#include <tessel/toolkit/Scoped.h>

#include "core/WorldReader.h"

namespace tessel {

namespace {

// Lists up to this length are gathered first; longer ones are counted ahead and read in place.
template <class Value> constexpr std::size_t gatheredValues = 256;
template <> constexpr std::size_t gatheredValues<SbString> = 8;

// One value from the text, by its type in memory.

bool readOne(WorldReader& reader, float& out) { return reader.lexer().number(out); }
bool readOne(WorldReader& reader, std::int32_t& out) { return reader.lexer().number(out); }

bool readOne(WorldReader& reader, SbTime& out) {
  double seconds = 0;
  if (!reader.lexer().number(seconds)) return false;
  out.setValue(seconds);
  return true;
}

template <std::size_t n> bool readFloats(WorldReader& reader, float (&out)[n]) {
  for (float& f : out)
    if (!reader.lexer().number(f)) return false;
  return true;
}

bool readOne(WorldReader& reader, SbVec2f& out) {
  float v[2];
  if (!readFloats(reader, v)) return false;
  out.setValue(v);
  return true;
}

bool readOne(WorldReader& reader, SbVec3f& out) {
  float v[3];
  if (!readFloats(reader, v)) return false;
  out.setValue(v);
  return true;
}

bool readOne(WorldReader& reader, SbColor& out) {
  float v[3];
  if (!readFloats(reader, v)) return false;
  out.setValue(v);
  return true;
}

bool readOne(WorldReader& reader, SbRotation& out) {
  float v[4];
  if (!readFloats(reader, v)) return false;
  const SbVec3f axis(v[0], v[1], v[2]);
  // An axis without direction turns nothing.
  out = axis.sqrLength() > 0 ? SbRotation(axis, v[3]) : SbRotation::identity();
  return true;
}

bool readOne(WorldReader& reader, SbMatrix& out) {
  float v[16];
  if (!readFloats(reader, v)) return false;
  std::copy(std::begin(v), std::end(v), &out[0][0]);
  return true;
}

bool readOne(WorldReader& reader, SbString& out) {
  Lexer& lexer = reader.lexer();
  const bool quoted = lexer.peek() == '"';
  reader.noteString();
  if (quoted) {
    std::string text;
    if (!lexer.quoted(text)) return reader.error("The file ends inside of a string");
    out = text.c_str();
    return true;
  }
  const std::string_view word = lexer.word();
  if (word.empty()) return false;
  out = SbString(std::string(word).c_str());
  return true;
}

// Single fields.

template <class Field, class Value> bool readSingle(WorldReader& reader, SoField& field) {
  Value value;
  if (!readOne(reader, value)) return false;
  static_cast<Field&>(field).setValue(value);
  return true;
}

// A list in the place of one string passes: many worlds give a font several families.
bool readString(WorldReader& reader, SoField& field) {
  Lexer& lexer = reader.lexer();
  if (!lexer.take('[')) return readSingle<SoSFString, SbString>(reader, field);
  SbString first, another;
  for (int count = 0; !lexer.take(']'); ++count)
    if (!readOne(reader, count == 0 ? first : another)) return false;
  reader.warning("VrmlDB::read", "a list stands where one string is wanted; the first one counts");
  static_cast<SoSFString&>(field).setValue(first);
  return true;
}

bool readBool(WorldReader& reader, SoField& field) {
  Lexer& lexer = reader.lexer();
  const std::string_view word = lexer.strictName();
  if (word == "TRUE" || word == "FALSE") {
    static_cast<SoSFBool&>(field).setValue(word == "TRUE");
    return true;
  }
  const std::string_view shown = word.empty() ? lexer.word() : word;
  return reader.error("Unknown value (\"%.*s\") for SoSFBool (must be TRUE or FALSE)",
                      static_cast<int>(std::min<std::size_t>(shown.size(), 200)), shown.data());
}

bool readEnum(WorldReader& reader, SoField& f) {
  SoSFEnum& field = static_cast<SoSFEnum&>(f);
  const std::string_view word = reader.lexer().strictName();
  for (int i = 0; i < field.getNumEnums(); ++i) {
    SbName name;
    const int value = field.getEnum(i, name);
    if (word != name.getString()) continue;
    field.setValue(value);
    return true;
  }
  return false;
}

bool readImage(WorldReader& reader, SoField& field) {
  constexpr std::int64_t maxPixels = 64'000'000;
  Lexer& lexer = reader.lexer();
  std::int32_t width = 0, height = 0, components = 0;
  if (!lexer.number(width) || !lexer.number(height) || !lexer.number(components)) return false;
  if (width < 0 || height < 0 || components < 0 || components > 4 || width > 32767 || height > 32767 ||
      std::int64_t{width} * height > maxPixels)
    return reader.error("An image of %d x %d pixels with %d components is out of bounds", width, height,
                        components);
  const std::size_t pixels =
      components == 0 ? 0 : static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  if (pixels > lexer.bytesLeft())
    return reader.error("The image has fewer than %d x %d pixels", width, height);
  std::vector<unsigned char> bytes(pixels * static_cast<std::size_t>(components));
  auto out = bytes.begin();
  for (std::size_t i = 0; i < pixels; ++i) {
    std::uint32_t pixel = 0;
    if (!lexer.number(pixel)) return reader.error("The image has fewer than %d x %d pixels", width, height);
    for (int c = components - 1; c >= 0; --c) *out++ = static_cast<unsigned char>(pixel >> (8 * c));
  }
  if (pixels == 0) width = height = components = 0;
  static_cast<SoSFImage&>(field).setValue(SbVec2s(static_cast<short>(width), static_cast<short>(height)),
                                          components, bytes.empty() ? nullptr : bytes.data());
  return true;
}

bool readSFNode(WorldReader& reader, SoField& field) {
  bool ok = false;
  const SoRef<VrmlNode> node = reader.readNode(ok);
  if (ok) static_cast<SoSFNode&>(field).setValue(node.get());
  return ok;
}

// Multiple fields.

bool couldNotRead(WorldReader& reader, int number) {
  return reader.error("Couldn't read value %d of field", number);
}

// How many values stand before the closing bracket: right for numbers, a guess that grows for the rest.
template <class Value> std::size_t expectedValues(const Lexer& lexer) {
  if constexpr (std::is_same_v<Value, SbTime>)
    return lexer.countToBracket();
  else if constexpr (std::is_trivially_copyable_v<Value>)
    return lexer.countToBracket() * sizeof(float) / sizeof(Value);
  else
    return gatheredValues<Value>;
}

template <class Field, class Value> void setValues(Field& field, int count, const Value* values) {
  if (field.getNum() > count || count == 0) field.setNum(count);
  if (count > 0) field.setValues(0, count, values);
}

template <class Field, class Value> bool readMultiple(WorldReader& reader, SoField& f) {
  Field& field = static_cast<Field&>(f);
  Lexer& lexer = reader.lexer();
  if (!lexer.take('[')) {
    Value value;
    if (!readOne(reader, value)) return couldNotRead(reader, 1);
    setValues(field, 1, &value);
    return true;
  }

  // Short lists are gathered on the stack; what goes on is read in place, in one array of the right length.
  constexpr std::size_t atFirst = gatheredValues<Value>;
  std::array<Value, atFirst> gathered;
  std::size_t count = 0;
  std::size_t room = atFirst;
  Value* values = gathered.data();
  bool ok = true;
  while (!lexer.take(']')) {
    if (count == room) {
      room += std::max<std::size_t>(expectedValues<Value>(lexer), 1);
      if (values != gathered.data()) field.finishEditing();
      field.setNum(static_cast<int>(room));
      Value* larger = field.startEditing();
      if (values == gathered.data()) std::move(gathered.begin(), gathered.end(), larger);
      values = larger;
    }
    ok = readOne(reader, values[count]);
    if (!ok) break;
    ++count;
  }
  if (values == gathered.data()) {
    setValues(field, static_cast<int>(count), values);
  } else {
    field.finishEditing();
    if (field.getNum() != static_cast<int>(count)) field.setNum(static_cast<int>(count));
  }
  return ok || couldNotRead(reader, static_cast<int>(count) + 1);
}

// Reads nodes in brackets, or one without, and hands each on, also null ones.
template <class Take> bool readNodes(WorldReader& reader, bool numbered, Take take) {
  Lexer& lexer = reader.lexer();
  bool ok = false;
  if (!lexer.take('[')) {
    const SoRef<VrmlNode> node = reader.readNode(ok);
    if (ok) take(node.get());
    return ok || (numbered && couldNotRead(reader, 1));
  }
  for (int count = 0; !lexer.take(']'); ++count) {
    const SoRef<VrmlNode> node = reader.readNode(ok);
    if (!ok) return couldNotRead(reader, numbered ? count + 1 : 0);
    take(node.get());
  }
  return true;
}

bool readMFNode(WorldReader& reader, SoField& f) {
  SoMFNode& field = static_cast<SoMFNode&>(f);
  field.setNum(0);
  return readNodes(reader, true, [&](VrmlNode* node) { field.set1Value(field.getNum(), node); });
}

// Children are added to those that the list holds already: the field may stand twice in a body.
bool readChildren(WorldReader& reader, SoField& f) {
  SoChildList* list = static_cast<VrmlMFChildren&>(f).getValue();
  if (!list) {
    SoDebugError::post("VrmlMFChildren::readValue",
                       "setNodeParent() MUST be called by the node constructor before reading.");
    return false;
  }
  return readNodes(reader, false, [&](VrmlNode* node) { list->append(node ? node : new VrmlNULL); });
}

constexpr bool isMultiple(ValueType type) { return type >= ValueType::mfColor && type <= ValueType::mfVec3f; }

constexpr auto readers = [] {
  using Reader = bool (*)(WorldReader&, SoField&);
  std::array<Reader, static_cast<std::size_t>(ValueType::count)> table{};
  auto set = [&](ValueType type, Reader reader) { table[static_cast<std::size_t>(type)] = reader; };
  set(ValueType::sfBool, readBool);
  set(ValueType::sfColor, readSingle<SoSFColor, SbColor>);
  set(ValueType::sfEnum, readEnum);
  set(ValueType::sfFloat, readSingle<SoSFFloat, float>);
  set(ValueType::sfImage, readImage);
  set(ValueType::sfInt32, readSingle<SoSFInt32, std::int32_t>);
  set(ValueType::sfMatrix, readSingle<SoSFMatrix, SbMatrix>);
  set(ValueType::sfNode, readSFNode);
  set(ValueType::sfRotation, readSingle<SoSFRotation, SbRotation>);
  set(ValueType::sfString, readString);
  set(ValueType::sfTime, readSingle<SoSFTime, SbTime>);
  set(ValueType::sfVec2f, readSingle<SoSFVec2f, SbVec2f>);
  set(ValueType::sfVec3f, readSingle<SoSFVec3f, SbVec3f>);
  set(ValueType::mfColor, readMultiple<SoMFColor, SbColor>);
  set(ValueType::mfFloat, readMultiple<SoMFFloat, float>);
  set(ValueType::mfInt32, readMultiple<SoMFInt32, std::int32_t>);
  set(ValueType::mfNode, readMFNode);
  set(ValueType::mfRotation, readMultiple<SoMFRotation, SbRotation>);
  set(ValueType::mfString, readMultiple<SoMFString, SbString>);
  set(ValueType::mfTime, readMultiple<SoMFTime, SbTime>);
  set(ValueType::mfVec2f, readMultiple<SoMFVec2f, SbVec2f>);
  set(ValueType::mfVec3f, readMultiple<SoMFVec3f, SbVec3f>);
  set(ValueType::children, readChildren);
  return table;
}();
static_assert(std::ranges::find(readers, nullptr) == readers.end(), "one reader per type");

}  // namespace

bool readValue(WorldReader& reader, SoField& field, ValueType type) {
  if (type >= ValueType::count) return false;
  bool ok = false;
  {
    // A first value is no event. A list is set in several steps, of which nobody need hear.
    const NotifyOff silence(field);
    ok = readers[static_cast<std::size_t>(type)](reader, field);
  }
  if (isMultiple(type)) field.touch();  // for a node that keeps a copy
  return ok;
}

}  // namespace tessel
