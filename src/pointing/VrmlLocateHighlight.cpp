// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/pointing/VrmlLocateHighlight.h>

#include <initializer_list>
#include <utility>
#include <vector>

#include "core/NodeClassImpl.h"

using tessel::FieldKind;
using tessel::FieldSpec;
using tessel::fieldSpec;

std::span<const FieldSpec> VrmlLocateHighlight::fields() {
  static constexpr FieldSpec table[] = {
      fieldSpec<&VrmlLocateHighlight::mode>("mode", FieldKind::field, {"AUTO"}),
      fieldSpec<&VrmlLocateHighlight::style>("style", FieldKind::field, {"EMISSIVE"}),
      fieldSpec<&VrmlLocateHighlight::color>("color", FieldKind::field, {0.3, 0.3, 0.3}),
  };
  return table;
}

namespace {

void nameValues(SoSFEnum& field, std::initializer_list<std::pair<const char*, int>> named) {
  std::vector<SbName> names;
  std::vector<int> values;
  for (const auto& [name, value] : named) {
    names.emplace_back(name);
    values.push_back(value);
  }
  field.setEnums(static_cast<int>(names.size()), values.data(), names.data());
}

}  // namespace

VrmlLocateHighlight::VrmlLocateHighlight() {
  nameValues(mode, {{"AUTO", AUTO}, {"ON", ON}, {"OFF", OFF}});
  nameValues(style, {{"EMISSIVE", EMISSIVE}, {"EMISSIVE_DIFFUSE", EMISSIVE_DIFFUSE}});
  setUpFields();
}

VrmlLocateHighlight::~VrmlLocateHighlight() = default;

template class tessel::NodeClass<VrmlLocateHighlight, VrmlGroup>;
