// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/core/VrmlDebug.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include <Inventor/SbName.h>
#include <Inventor/SoOutput.h>
#include <Inventor/actions/SoWriteAction.h>
#include <Inventor/fields/SoField.h>
#include <Inventor/nodes/SoNode.h>

namespace {

constexpr std::size_t lineLength = 200;
using Line = std::array<char, lineLength>;

// The lines of RTPrintf, as many as the environment asks for.
struct Log {
  std::vector<Line> lines;
  std::size_t stored = 0;

  Log() {
    const char* length = VrmlDebug::GetEnv("SG_DEBUG_BUFLEN");
    const int wanted = length ? std::atoi(length) : 0;
    lines.resize(wanted > 0 ? static_cast<std::size_t>(wanted) : 1);
  }
};

std::unordered_map<void*, std::string>& pointerNames() {
  static std::unordered_map<void*, std::string> names;
  return names;
}

void writeTo(SoNode* node, SoOutput* out) {
  node->ref();
  SoWriteAction action(out);
  action.apply(node);
  node->unrefNoDelete();
}

}  // namespace

const char* VrmlDebug::GetEnv(const char* name) {
  static std::unordered_map<std::string, std::optional<std::string>> cache;
  const auto [entry, isNew] = cache.try_emplace(name);
  if (isNew)
    if (const char* value = std::getenv(name)) entry->second = value;
  return entry->second ? entry->second->c_str() : nullptr;
}

void VrmlDebug::RTPrintf(const char* format, ...) {
  static Log log;
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(log.lines[log.stored].data(), lineLength, format, arguments);
  va_end(arguments);
  if (++log.stored < log.lines.size()) return;
  for (const Line& line : log.lines) std::fputs(line.data(), stderr);
  if (log.lines.size() > 1) std::fputc('\n', stderr);
  log.stored = 0;
}

void VrmlDebug::NamePtr(const char* name, void* pointer) { pointerNames()[pointer] = name; }

const char* VrmlDebug::PtrName(void* pointer) {
  const auto found = pointerNames().find(pointer);
  return found == pointerNames().end() ? "<noName>" : found->second.c_str();
}

void VrmlDebug::write(SoNode* node) {
  SoOutput out;
  writeTo(node, &out);
}

void VrmlDebug::writeFile(SoNode* node, const char* path) {
  SoOutput out;
  if (out.openFile(path ? path : "/tmp/debug.sg")) writeTo(node, &out);
}

void VrmlDebug::writeField(SoField* field) {
  SoFieldContainer* container = field->getContainer();
  SbName name;
  if (container) container->getFieldName(field, name);
  std::printf("Field name is: %s\n", name.getString());
  if (!container || !container->isOfType(SoNode::getClassTypeId())) return;
  std::printf("Field is part of node:\n");
  std::fflush(stdout);
  write(static_cast<SoNode*>(container));
}

void VrmlDebug::printName(SoBase* base) {
  const SbName name = base->getName();
  std::printf("%s", name.getLength() > 0 ? name.getString() : " not named ");
}
