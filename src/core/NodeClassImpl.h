// SPDX-License-Identifier: BSD-3-Clause
#pragma once

// The definitions behind <tessel/core/NodeClass.h>. A node class's source includes this and ends in
//     template class tessel::NodeClass<VrmlBox, VrmlGeometry>;

#include <string>

#include <Inventor/SbName.h>
#include <Inventor/nodes/SoNode.h>

#include <tessel/core/NodeClass.h>

#include "core/FieldSpec.h"
#include "toolkit/TypeNames.h"

namespace tessel {

template <class Self, class Parent> SoType NodeClass<Self, Parent>::classTypeId;
template <class Self, class Parent> SoFieldData* NodeClass<Self, Parent>::fieldData = nullptr;

template <class Self, class Parent> void* NodeClass<Self, Parent>::createInstance() {
  if constexpr (requires { new Self; })
    return new Self;
  else
    return nullptr;
}

template <class Self, class Parent> void NodeClass<Self, Parent>::initClass() {
  constexpr bool concrete = requires { new Self; };
  const std::string typeName = std::string("Vrml") + Self::fileFormatName;
  classTypeId = SoType::createType(Parent::getClassTypeId(), SbName(typeName.c_str()),
                                   concrete ? &NodeClass::createInstance : nullptr,
                                   static_cast<uint16_t>(SoNode::getNextActionMethodIndex()));
  SoNode::incNextActionMethodIndex();
  if constexpr (!requires { Self::standsInNoFile; }) typeNames().add(Self::fileFormatName, classTypeId);
}

template <class Self, class Parent> NodeClass<Self, Parent>::NodeClass() = default;
template <class Self, class Parent> NodeClass<Self, Parent>::~NodeClass() = default;

template <class Self, class Parent> void NodeClass<Self, Parent>::setUpFields() {
  const bool first = fieldData == nullptr;
  if (first) fieldData = new SoFieldData(*Parent::getFieldDataPtr());
  for (const FieldSpec& spec : Self::fields()) {
    SoField* field = spec.in(*this);
    setToDefault(*field, spec);  // before it has a container: nobody is told
    field->setContainer(this);
    if (first) fieldData->addField(this, spec.name.data(), field);
  }
  this->isBuiltIn = TRUE;
}

template <class Self, class Parent> SoType NodeClass<Self, Parent>::getClassTypeId() { return classTypeId; }

template <class Self, class Parent> SoType NodeClass<Self, Parent>::getTypeId() const { return classTypeId; }

template <class Self, class Parent> const char* NodeClass<Self, Parent>::getFileFormatName() const {
  return Self::fileFormatName;
}

template <class Self, class Parent> int NodeClass<Self, Parent>::getFieldType(const SoField* field) const {
  auto& self = const_cast<NodeClass&>(*this);
  for (const FieldSpec& spec : Self::fields())
    if (spec.in(self) == field) return static_cast<int>(spec.kind);
  return Parent::getFieldType(field);
}

template <class Self, class Parent> const SoFieldData* NodeClass<Self, Parent>::getFieldData() const {
  return fieldData;
}

template <class Self, class Parent> const SoFieldData** NodeClass<Self, Parent>::getFieldDataPtr() {
  return const_cast<const SoFieldData**>(&fieldData);
}

template <class Self, class Parent>
const FieldSpec* NodeClass<Self, Parent>::findField(std::string_view name) const {
  for (const FieldSpec& spec : Self::fields())
    if (spec.name == name) return &spec;
  return Parent::findField(name);
}

}  // namespace tessel
