// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

class SoBase;
class SoField;
class SoNode;

/// Helpers to be called from a debugger. The library itself calls none of them.
class TESSEL_API VrmlDebug {
public:
  VrmlDebug() = delete;

  /// `getenv` with a cache that also remembers what is not set.
  static const char* GetEnv(const char* name);
  /// Formats a line of at most 200 bytes into a log of as many lines as the environment variable
  /// SG_DEBUG_BUFLEN says (1 if it says nothing). A full log goes to standard error and starts over.
  [[gnu::format(printf, 1, 2)]] static void RTPrintf(const char* format, ...);

  /// Gives a pointer a name, and the name back; "<noName>" for an unknown one.
  static void NamePtr(const char* name, void* pointer);
  static const char* PtrName(void* pointer);

  /// Writes a node to standard output, or to a file; a null path means "/tmp/debug.sg".
  static void write(SoNode* node);
  static void writeFile(SoNode* node, const char* path);
  /// Prints a field's name and, if a node holds it, the node.
  static void writeField(SoField* field);
  /// Prints an object's name, or " not named ".
  static void printName(SoBase* base);
};
