// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

#include <memory>
#include <unordered_map>
#include <vector>

#include <Inventor/SbName.h>
#include <tessel/toolkit/SoRef.h>

class SoNodeList;
class VrmlProtoDef;

/// One scope of names of prototypes, and, as statics, the stacks of such scopes.
///
/// A stack is one file: names of one file do not reach another. Who reads a file for somebody (an Inline) makes a
/// stack, reads, and keeps the stack for as long as it wants to look prototypes up in it. A read that finds no current
/// stack makes one of its own and deletes it at its end. Stacks are told by numbers, which are used again.
class TESSEL_API VrmlProtoDict {
public:
  VrmlProtoDict();
  ~VrmlProtoDict();
  VrmlProtoDict(const VrmlProtoDict&) = delete;
  VrmlProtoDict& operator=(const VrmlProtoDict&) = delete;

  /// The stack that PROTO statements are entered in and instances look into; -1 while nothing is read.
  static int currentStackId;

  /// Makes a stack with one scope, current from now on, and gives its number.
  static int createStack();
  /// Frees a stack: its scopes are gone, definitions live on by their instances.
  static void deleteStack(int id);
  /// A negative number becomes -1.
  static void setCurrentStackId(int id);

  /// Opens a scope inside the top one. The stack owns it until it is popped. Null if there is no such stack.
  static VrmlProtoDict* push(int id);
  /// Takes the top scope off its stack; now it belongs to the caller.
  static std::unique_ptr<VrmlProtoDict> pop(int id);
  /// The innermost scope of a stack, null if there is no such stack.
  static VrmlProtoDict* getTopOfStack(int id);

  /// Enters a definition in the top scope under its name; one of the same name is hidden from now on.
  static void add(int id, VrmlProtoDef* definition);
  /// Looks for a name from the top scope of a stack outwards; null if it is nowhere.
  static VrmlProtoDef* find(int id, const SbName& name);
  /// Whether there is any definition to be found from the top scope outwards.
  static bool knowsAny(int id);
  /// Empties the top scope of a stack.
  static void clear(int id);

  /// Looks for a name in this scope alone; null if it is not there.
  VrmlProtoDef* findInThis(const SbName& name) const;
  /// The first definition that has its body in this file, null if there is none.
  VrmlProtoDef* getFirstDefinition() const;
  /// Appends all definitions, in the order of the file.
  void getAllDefinitions(SoNodeList& list) const;

  /// Whether names that are not here are looked for further out; yes at first.
  void setStop(bool stop) { stopsHere = stop; }

private:
  struct NameHash {
    std::size_t operator()(const SbName& name) const noexcept;
  };

  std::unordered_map<SbName, VrmlProtoDef*, NameHash> dictionary;  // entries of `definitions`
  std::vector<tessel::SoRef<VrmlProtoDef>> definitions;
  std::unique_ptr<VrmlProtoDict> next;  // the enclosing scope
  bool stopsHere = false;
};
