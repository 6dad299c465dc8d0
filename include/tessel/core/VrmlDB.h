// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <tessel/Export.h>

#include <cstdint>
#include <string_view>

#include <Inventor/SbString.h>
#include <Inventor/SbTime.h>

class SbName;
class SoInput;
class SoNode;

namespace tessel {

/// How a read ended.
enum class ReadStatus {
  world,   ///< there are nodes
  empty,   ///< nothing wrong, and no node: an empty file, or one of routes and prototypes alone
  failed,  ///< an error was reported
};

/// What a host may ask of a read.
struct ReadOptions {
  bool strict = false;  ///< refuse what would pass with a warning
  /// Parse the programs of Scripts as they are read, without running them, so that their errors are reported now.
  bool checkScripts = false;
  int firstLine = 1;      ///< what messages call the first line of the text
  int maxNesting = 4000;  ///< levels of nodes inside nodes; deeper is an error
  /// How many of those levels are above the text in the world that it is read for.
  int levelsAbove = 0;
  /// If given, takes how many levels there are in all, at most: those above, and in the text, also of its prototypes.
  int* levels = nullptr;
  /// Nodes that a traversal may meet, each USE counted with all below it; more is an error.
  std::uint64_t maxExpanded = 100'000'000;
  /// Nodes that instances of prototypes make; an instance beyond stays empty, with a warning.
  std::uint64_t maxInstanceNodes = 4'000'000;
  int maxInstanceNesting = 10'000;  ///< instances inside one another; one beyond stays empty, with a warning
};

}  // namespace tessel

/// The static front of the library: start-up, reading of worlds, names, URLs and the frame clock.
///
/// A host calls SoDB::init(), then `init` once. All of it is for the one scene thread. Errors of a read go to
/// SoReadError with file and line, warnings of a read to SoDebugError, with the line at the end of the text.
class TESSEL_API VrmlDB {
public:
  VrmlDB() = delete;

  static SbString header_v1;         ///< "#VRML V1.0 ascii"
  static SbString header_v2;         ///< "#VRML V2.0 utf8"
  static SbString header_v2_draft1;  ///< "#VRML Draft #1 V2.0 utf8"
  static SbString header_v2_draft2;  ///< "#VRML Draft #2 V2.0 utf8"
  static SbString baseURL;           ///< what relative URLs are resolved against; empty after `init`
  static int usingVrmlTypeIds;       ///< 1 while a VRML 2.0 file is being read, 0 otherwise

  /// Starts the library: classes, headers, clock. A second call does nothing.
  static void init();
  static void useVrmlTypeIds();
  static void useToolkitTypeIds();

  /// Reads a whole world. One top-level node is given itself, several under a VrmlGroup; null for an empty
  /// world and after an error. The node has no reference of the caller.
  static SoNode* read(SoInput* in);
  /// The same, and tells an empty world from a failed one.
  static SoNode* read(SoInput* in, tessel::ReadStatus& status, const tessel::ReadOptions& options = {});
  /// Reads a world from memory: text with its header, or the same compressed by gzip. `fileName` is for
  /// messages. The text must live until the call returns.
  static SoNode* read(std::string_view text, const char* fileName, tessel::ReadStatus& status,
                      const tessel::ReadOptions& options = {});
  /// Reads statements until one node is complete, and gives it unreferenced. Null with `error` 0 at the end
  /// of the input, null with `error` 1 after a report.
  static SoNode* readNode(SoInput* in, int& error);

  /// Reads one identifier; at most 1023 characters are kept. 0 if none starts here.
  static int readIdentifier(SoInput* in, SbName& name);
  /// Whether a string is an identifier: not empty, all characters fit.
  static int isIdentifier(const SbString& text);
  static int isIdentifierChar(char c);

  /// The time of the current frame: one for everything that happens in it.
  static const SbTime& getFrameTime();
  static const SbTime& getPrevFrameTime();
  /// Takes the frame time from the toolkit's real-time field.
  static void setFrameTime();

  /// Takes the toolkit's real-time clock over: from now on it stands still but for `setClock`. To be called
  /// after SoDB::init and before `init`. Other toolkit scenes of the process then run on this clock too.
  static void takeClock(const SbTime& start);
  /// Sets the real-time field, which runs what listens to it.
  static void setClock(const SbTime& now);

  static void setBaseURL(const char* url);
  /// Resolves `url` against `base`.
  static void expandURL(const SbString& base, const SbString& url, SbString& result);

  static void preFileReadCB_v2(void* data, SoInput* in);
  static void postFileReadCB_v2(void* data, SoInput* in);
  /// For a host that registers it for V1 files: reports that the file must be converted.
  static void preFileReadCB_v1(void* data, SoInput* in);
  static void postFileReadCB_v1(void* data, SoInput* in);

private:
  static SbTime frameTime;
  static SbTime prevFrameTime;
};
