// SPDX-License-Identifier: BSD-3-Clause
#include "core/ValueType.h"

#include <array>
#include <new>

#include <tessel/core/VrmlNode.h>

#include "core/ByClass.h"
#include "core/FieldSpec.h"

namespace tessel {

namespace {

// Sets a single field from up to four numbers, a multiple one from values of `width` numbers each.
struct Row {
  const char* word;
  SoType (*fieldClass)();
  SoField* (*make)();
  SoField* (*makeAt)(void*);
  std::size_t size;
  void (*setDefault)(SoField&, const FieldDefault&);
};

SbTime timeOf(const double* n) { return SbTime(n[0]); }
float floatOf(const double* n) { return static_cast<float>(n[0]); }
std::int32_t intOf(const double* n) { return static_cast<std::int32_t>(n[0]); }
SbBool boolOf(const double* n) { return n[0] != 0; }
SbVec2f vec2fOf(const double* n) { return {static_cast<float>(n[0]), static_cast<float>(n[1])}; }
SbVec3f vec3fOf(const double* n) {
  return {static_cast<float>(n[0]), static_cast<float>(n[1]), static_cast<float>(n[2])};
}
SbColor colorOf(const double* n) { return SbColor(vec3fOf(n)); }
SbRotation rotationOf(const double* n) {
  return n[3] == 0 ? SbRotation::identity() : SbRotation(vec3fOf(n), static_cast<float>(n[3]));
}

template <class Field, auto valueOf> void single(SoField& field, const FieldDefault& d) {
  static_cast<Field&>(field).setValue(valueOf(d.numbers));
}

template <class Field, auto valueOf, int width> void multiple(SoField& f, const FieldDefault& d) {
  Field& field = static_cast<Field&>(f);
  const int values = d.count / width;
  field.setNum(values);
  for (int i = 0; i < values; ++i) field.set1Value(i, valueOf(d.numbers + i * width));
}

void image(SoField& field, const FieldDefault&) {
  static_cast<SoSFImage&>(field).setValue(SbVec2s(0, 0), 0, nullptr);
}
void sfEnum(SoField& field, const FieldDefault& d) {
  if (d.text) static_cast<SoSFEnum&>(field).setValue(SbName(d.text));
}
void matrix(SoField& field, const FieldDefault&) {
  static_cast<SoSFMatrix&>(field).setValue(SbMatrix::identity());
}
void sfNode(SoField& field, const FieldDefault&) { static_cast<SoSFNode&>(field).setValue(nullptr); }
void mfNode(SoField& field, const FieldDefault&) { static_cast<SoMFNode&>(field).setNum(0); }
void sfString(SoField& field, const FieldDefault& d) {
  static_cast<SoSFString&>(field).setValue(d.text ? d.text : "");
}
void mfString(SoField& f, const FieldDefault& d) {
  SoMFString& field = static_cast<SoMFString&>(f);
  field.setNum(d.count);
  if (d.text) field.set1Value(0, d.text);
}
// The list is the node's own: its constructor gives it to the field.
void childList(SoField&, const FieldDefault&) {}

template <class Field> SoField* make() { return new Field; }
template <class Field> SoField* makeAt(void* place) { return ::new (place) Field; }

template <class Field>
constexpr Row row(const char* word, void (*setDefault)(SoField&, const FieldDefault&)) {
  return {word, &Field::getClassTypeId, &make<Field>, &makeAt<Field>, sizeof(Field), setDefault};
}

const std::array<Row, static_cast<std::size_t>(ValueType::count)> rows = {
    row<SoSFBool>("SFBool", single<SoSFBool, boolOf>),
    row<SoSFColor>("SFColor", single<SoSFColor, colorOf>),
    row<SoSFEnum>("SFEnum", sfEnum),
    row<SoSFFloat>("SFFloat", single<SoSFFloat, floatOf>),
    row<SoSFImage>("SFImage", image),
    row<SoSFInt32>("SFInt32", single<SoSFInt32, intOf>),
    row<SoSFMatrix>("SFMatrix", matrix),
    row<VrmlSFNode>("SFNode", sfNode),
    row<SoSFRotation>("SFRotation", single<SoSFRotation, rotationOf>),
    row<SoSFString>("SFString", sfString),
    row<SoSFTime>("SFTime", single<SoSFTime, timeOf>),
    row<SoSFVec2f>("SFVec2f", single<SoSFVec2f, vec2fOf>),
    row<SoSFVec3f>("SFVec3f", single<SoSFVec3f, vec3fOf>),
    row<SoMFColor>("MFColor", multiple<SoMFColor, colorOf, 3>),
    row<SoMFFloat>("MFFloat", multiple<SoMFFloat, floatOf, 1>),
    row<SoMFInt32>("MFInt32", multiple<SoMFInt32, intOf, 1>),
    row<VrmlMFNode>("MFNode", mfNode),
    row<SoMFRotation>("MFRotation", multiple<SoMFRotation, rotationOf, 4>),
    row<SoMFString>("MFString", mfString),
    row<SoMFTime>("MFTime", multiple<SoMFTime, timeOf, 1>),
    row<SoMFVec2f>("MFVec2f", multiple<SoMFVec2f, vec2fOf, 2>),
    row<SoMFVec3f>("MFVec3f", multiple<SoMFVec3f, vec3fOf, 3>),
    row<VrmlMFChildren>("MFNode", childList),
};

const Row& rowOf(ValueType type) { return rows[static_cast<std::size_t>(type)]; }

}  // namespace

ValueType valueTypeNamed(std::string_view name) {
  if (name == "SFMatrix" || name == "SFEnum") return ValueType::count;  // nothing that a file declares
  for (std::size_t i = 0; i < rows.size(); ++i)
    if (name == rows[i].word) return static_cast<ValueType>(i);
  return ValueType::count;
}

const char* nameOf(ValueType type) { return rowOf(type).word; }

static ValueType typeInTable(SoType fieldClass) {
  for (std::size_t i = 0; i < rows.size(); ++i)
    if (fieldClass == rows[i].fieldClass()) return static_cast<ValueType>(i);
  return fieldClass == SoSFNode::getClassTypeId() ? ValueType::sfNode : ValueType::count;
}

ValueType valueTypeOf(SoType fieldClass) { return byClass<typeInTable>(fieldClass); }
ValueType valueTypeOf(const SoField& field) { return valueTypeOf(field.getTypeId()); }

SoField* newField(ValueType type) {
  SoField* field = rowOf(type).make();
  VrmlNode::initializeField(field);
  return field;
}

std::size_t fieldSize(ValueType type) { return rowOf(type).size; }
SoField* makeFieldAt(ValueType type, void* place) { return rowOf(type).makeAt(place); }

void setToDefault(SoField& field, const FieldSpec& spec) {
  rowOf(spec.type).setDefault(field, spec.initial);
  field.setDefault(TRUE);
}

}  // namespace tessel
