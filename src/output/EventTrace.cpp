// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/output/EventTrace.h>

#include <algorithm>
#include <utility>

#include <Inventor/lists/SoFieldList.h>

#include <tessel/core/FieldKind.h>
#include <tessel/core/VrmlNode.h>
#include <tessel/events/VrmlFanIn.h>
#include <tessel/output/NodeNames.h>

#include "core/AsVrmlNode.h"
#include "core/EventWatch.h"
#include "core/ValueWriter.h"
#include "output/NodeNamesState.h"

namespace tessel {

namespace {

// Where the value is that a field has just been sent. A route only says that there is one; to fetch it along the
// routes now, in the middle of a notification, could give another one than later.
const SoField& sourceOf(const SoField& sent) {
  constexpr int longestWay = 10'000;
  const SoField* field = &sent;
  for (int i = 0; i < longestWay && field->getDirty(); ++i) {
    SoField* master = nullptr;
    if (!field->getConnectedField(master)) {
      const VrmlFanIn* fanIn = VrmlFanIn::feeding(field);
      master = fanIn ? fanIn->getLastChanged() : nullptr;
    }
    if (!master) break;
    field = master;
  }
  return *field;
}

// An exposed field has three names.
bool isNameOf(const std::string& field, FieldKind kind, std::string_view name) {
  const bool exposed = kind == FieldKind::exposedField;
  return name == field || (exposed && (name == "set_" + field || name == field + "_changed"));
}

}  // namespace

struct EventTrace::State : EventWatch {
  /// A node, as long as it lives, and then what was its name.
  struct Mention {
    const VrmlNode* node = nullptr;
    std::string lastName;
    std::size_t place = 0;  // in a value
  };
  struct Record {
    Mention sender;
    std::string field;
    FieldKind kind = FieldKind::internal;
    std::string value;               // less the names in it
    std::vector<Mention> mentioned;  // by place
  };

  struct Selection {
    std::string text;
    bool met = false;
  };

  State(NodeNames& n, Sink s) : names(n), sink(std::move(s)) {
    style.oneLine = true;
    style.node = [this](std::string& out, const SoNode& node) {
      if (!asVrmlNode(&node)) {
        out += node.getTypeId().getName().getString();
        return;
      }
      const VrmlNode& ours = static_cast<const VrmlNode&>(node);
      mentioned.push_back({&ours, plainName(ours), out.size()});
    };
  }

  bool isSelected(std::string_view node, const std::string& field, FieldKind kind) const {
    return std::ranges::any_of(selections, [&](const Selection& selection) {
      std::string_view wanted = selection.text;
      if (wanted == "all" || wanted == node) return kind != FieldKind::eventIn;
      if (!wanted.starts_with(node) || wanted[node.size()] != '.') return false;
      return isNameOf(field, kind, wanted.substr(node.size() + 1));
    });
  }

  /// Whether a selection says anything about the world as it is.
  bool isThere(const std::string& wanted) const {
    if (wanted == "all" || names.find(wanted)) return true;
    const std::size_t dot = wanted.rfind('.');
    const VrmlNode* node = dot == std::string::npos ? nullptr : names.find(wanted.substr(0, dot));
    SoFieldList fields;
    if (node) node->listFields(fields);
    SbName name;
    for (int i = 0; i < fields.getLength(); ++i)
      if (node->findFieldName(fields[i], name) &&
          isNameOf(name.getString(), static_cast<FieldKind>(node->getFieldType(fields[i])),
                   wanted.substr(dot + 1)))
        return true;
    return false;
  }

  void sent(VrmlNode& node, SoField& field) override {
    const auto kind = static_cast<FieldKind>(node.getFieldType(&field));
    if (kind != FieldKind::exposedField && kind != FieldKind::eventOut && kind != FieldKind::eventIn) return;
    SbName fieldName;
    if (!node.findFieldName(&field, fieldName)) return;
    // A node without a name may get one before the events are handed on.
    const std::string_view known = names.knownName(node);
    if (!known.empty() && !isSelected(known, fieldName.getString(), kind)) return;
    const SoField& source = sourceOf(field);
    const ValueType type = valueTypeOf(source);
    if (type == ValueType::count) return;
    Record record;
    record.sender.node = &node;
    record.field = fieldName.getString();
    record.kind = kind;
    mentioned.clear();
    writeValue(record.value, source, type, style);
    record.mentioned = mentioned;
    records.push_back(std::move(record));
  }

  void gone(const VrmlNode& node) override {
    const auto note = [&](Mention& mention) {
      if (mention.node != &node) return;
      mention.node = nullptr;
      if (const auto known = names.knownName(node); !known.empty()) mention.lastName = known;
    };
    for (Record& record : records) {
      note(record.sender);
      std::ranges::for_each(record.mentioned, note);
    }
  }

  std::string valueOf(const Record& record) {
    std::string value = record.value;
    for (auto mention = record.mentioned.rbegin(); mention != record.mentioned.rend(); ++mention)
      value.insert(mention->place, mention->node ? names.nameOf(*mention->node) : mention->lastName);
    return value;
  }

  NodeNames& names;
  Sink sink;
  ValueStyle style;
  std::vector<Selection> selections;
  std::vector<Record> records;
  std::vector<Mention> mentioned;  // in the value that is being written
};

EventTrace::EventTrace(NodeNames& names, Sink sink)
    : state(std::make_unique<State>(names, std::move(sink))) {}
EventTrace::~EventTrace() = default;

void EventTrace::select(std::string_view what) { state->selections.push_back({std::string(what)}); }

void EventTrace::flush() {
  const auto records = std::exchange(state->records, {});
  const auto isNew = [this](const State::Record& record) {
    return record.sender.node && state->names.knownName(*record.sender.node).empty();
  };
  if (std::ranges::any_of(records, isNew)) state->names.update();
  for (const State::Record& record : records) {
    const VrmlNode* sender = record.sender.node;
    const std::string name(sender ? state->names.knownName(*sender) : record.sender.lastName);
    if (!name.empty() && state->isSelected(name, record.field, record.kind))
      state->sink(name, record.field, state->valueOf(record));
  }
}

std::vector<std::string> EventTrace::unknownSelections() {
  std::vector<std::string> unknown;
  for (State::Selection& selection : state->selections) {
    selection.met = selection.met || state->isThere(selection.text);
    if (!selection.met) unknown.push_back(selection.text);
  }
  return unknown;
}

}  // namespace tessel
