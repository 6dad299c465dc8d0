// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/core/VrmlDB.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include <Inventor/SoDB.h>
#include <Inventor/SoInput.h>
#include <Inventor/SoSceneManager.h>
#include <Inventor/errors/SoReadError.h>
#include <Inventor/fields/SoSFTime.h>

#include <tessel/core/VrmlGroup.h>
#include <tessel/core/VrmlNULL.h>
#include <tessel/toolkit/Scoped.h>

#include "Registration.h"
#include "core/Loops.h"
#include "core/WorldReader.h"

using tessel::ReadOptions;
using tessel::ReadStatus;
using tessel::SoRef;
using tessel::WorldReader;

SbString VrmlDB::header_v1;
SbString VrmlDB::header_v2;
SbString VrmlDB::header_v2_draft1;
SbString VrmlDB::header_v2_draft2;
SbString VrmlDB::baseURL;
int VrmlDB::usingVrmlTypeIds = 0;
SbTime VrmlDB::frameTime;
SbTime VrmlDB::prevFrameTime;

namespace {

constexpr const char* convertFromV1 = "File is VRML V1.0 - it should be converted to V2.0 before reading";

SoSFTime* realTime = nullptr;

// Marks in the dictionary of an input, which lives as long as the input does: an input may die without a word,
// and another may come to its place.
constexpr const char* attachedMark = " attached";
constexpr const char* takenMark = " taken";

void mark(SoInput* in, const char* name) {
  static const SoRef<VrmlNode> entry(new VrmlNULL);
  in->addReference(name, entry.get(), FALSE);
}

bool isMarked(const SoInput* in, const char* name) { return in->findReference(name) != nullptr; }

// What names of prototypes mean in one text: a stack of scopes of its own, unless somebody has made one for it.
class PrototypeStack {
public:
  PrototypeStack()
      : isOwn(tessel::prototypeHooks().currentStack() < 0),
        id(isOwn ? tessel::prototypeHooks().createStack() : tessel::prototypeHooks().currentStack()) {
    enclosingOrNone();
  }
  ~PrototypeStack() {
    if (isOwn) tessel::prototypeHooks().deleteStack(id);
  }
  PrototypeStack(const PrototypeStack&) = delete;
  PrototypeStack& operator=(const PrototypeStack&) = delete;

  // The time in which the text is read. A text that is read in the middle of another leaves that one's in place.
  class Use {
  public:
    explicit Use(const PrototypeStack& s) : stack(s), enclosing(std::exchange(innermost, this)) {
      tessel::prototypeHooks().setCurrentStack(stack.id);
    }
    ~Use() {
      innermost = enclosing;
      enclosingOrNone();
    }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;

  private:
    friend PrototypeStack;
    const PrototypeStack& stack;
    Use* enclosing;
    inline static Use* innermost = nullptr;
  };

private:
  static void enclosingOrNone() {
    tessel::prototypeHooks().setCurrentStack(Use::innermost ? Use::innermost->stack.id : -1);
  }

  bool isOwn;
  int id;
};

// A text of which not all statements have been taken yet.
struct OpenText {
  std::unique_ptr<WorldReader> reader;
  std::unique_ptr<PrototypeStack> prototypes = std::make_unique<PrototypeStack>();
};

// The texts of inputs that are read node by node.
std::map<const SoInput*, OpenText>& attached() {
  static std::map<const SoInput*, OpenText> texts;
  return texts;
}

OpenText* attachedText(const SoInput* in) {
  const auto found = attached().find(in);
  if (found == attached().end()) return nullptr;
  if (isMarked(in, attachedMark)) return &found->second;
  attached().erase(found);
  return nullptr;
}

std::string nameOf(const SoInput* in) {
  const char* name = in->getCurFileName();
  return name ? name : "";
}

// While it exists names in a text mean our classes. Of a header that the toolkit knows from us it tells when it meets
// it, and not always when the file ends.
class Reading {
public:
  Reading() {
    ++depth;
    VrmlDB::useVrmlTypeIds();
  }
  ~Reading() {
    if (--depth == 0) VrmlDB::useToolkitTypeIds();
  }
  Reading(const Reading&) = delete;
  Reading& operator=(const Reading&) = delete;

private:
  inline static int depth = 0;
};

// The text of an input, which is then at its end: a second call gives none.
std::optional<tessel::SourceText> takeTextOnce(SoInput* in, std::string& complaint) {
  if (isMarked(in, takenMark)) return tessel::SourceText{};
  std::optional<tessel::SourceText> text = tessel::takeText(*in, complaint);
  mark(in, takenMark);
  return text;
}

// A reader for a text with a V2 header. Null with the status that the read ends in.
std::unique_ptr<WorldReader> makeReader(std::optional<tessel::SourceText> text, const std::string& fileName,
                                        const std::string& complaint, const ReadOptions& options,
                                        ReadStatus& status) {
  tessel::releaseLoopsBeforeRead(text ? text->text().size() : 0);  // what the last world left
  status = ReadStatus::failed;
  if (!text) {
    tessel::postReadError(fileName, 1, complaint);
    return nullptr;
  }
  switch (text->header) {
    case tessel::Header::vrml2:
      break;
    case tessel::Header::vrml2Odd: {
      const char* complaintOfHeader = "The header is not written as \"#VRML V2.0 utf8\"";
      if (options.strict) {
        tessel::postReadError(text->fileName, 1, complaintOfHeader);
        return nullptr;
      }
      tessel::Lexer atHeader(text->text());
      const tessel::ReadScope scope(atHeader, text->fileName);
      tessel::postReadWarning("VrmlDB::read", complaintOfHeader);
      break;
    }
    case tessel::Header::vrml1:
      tessel::postReadError(text->fileName, 1, convertFromV1);
      return nullptr;
    case tessel::Header::toolkit:
    case tessel::Header::none:
      if (text->text().find_first_not_of(" \t\r\n", text->bodyStart) == std::string_view::npos)
        status = ReadStatus::empty;
      else
        tessel::postReadError(text->fileName, 1, "The file does not begin with \"#VRML V2.0 utf8\"");
      return nullptr;
  }
  return std::make_unique<WorldReader>(std::move(*text), options);
}

// Takes the text, whose reader holds the nodes that have names: it is gone before a node is given away.
SoNode* readAll(OpenText text, ReadStatus& status) {
  const Reading reading;
  const PrototypeStack::Use scope(*text.prototypes);
  SoRef<VrmlGroup> root(new VrmlGroup);
  for (;;) {
    bool error = false;
    const SoRef<VrmlNode> node = text.reader->readTopNode(error);
    if (error) {
      status = ReadStatus::failed;
      return nullptr;
    }
    if (!node) break;
    const tessel::NotifyOff quiet(static_cast<SoNode&>(*root));  // nobody knows it yet
    root->addChild(node.get());
  }
  status = root->getNumChildren() == 0 ? ReadStatus::empty : ReadStatus::world;
  if (root->getNumChildren() == 0) return nullptr;
  if (root->getNumChildren() > 1) {
    root->setDef({SbName::empty(), SbName(text.reader->fileName().c_str()), 0});
    text.reader.reset();
    return root.release();
  }
  text.reader.reset();
  SoRef<SoNode> only(root->getChild(0));
  root.reset();
  return only.release();
}

// A file of the toolkit's own format: its nodes have no place in a world.
SoNode* readForeign(SoInput* in, ReadStatus& status) {
  SoNode* node = nullptr;
  const bool ok = SoDB::read(in, node);
  status = ok && !node ? ReadStatus::empty : ReadStatus::failed;
  if (node) {
    const SoRef<SoNode> release(node);
    SoReadError::post(in, "Non-VRML 2.0 node (%s) found in world", node->getTypeId().getName().getString());
  }
  return nullptr;
}

bool beginsAsToolkitFile(SoInput* in) {
  return in->isValidFile() && in->getNumBytesRead() > 0 && in->getHeader().getSubString(0, 8) == "#Inventor";
}

}  // namespace

void VrmlDB::init() {
  if (header_v2.getLength() > 0) return;
  realTime = static_cast<SoSFTime*>(SoDB::getGlobalField("realTime"));
  setBaseURL(nullptr);
  tessel::registerAll();
  header_v1 = "#VRML V1.0 ascii";
  header_v2 = "#VRML V2.0 utf8";
  header_v2_draft1 = "#VRML Draft #1 V2.0 utf8";
  header_v2_draft2 = "#VRML Draft #2 V2.0 utf8";
  for (const SbString* header : {&header_v2, &header_v2_draft1, &header_v2_draft2})
    SoDB::registerHeader(*header, FALSE, 2.1F, preFileReadCB_v2, postFileReadCB_v2);
  SoBase::setInstancePrefix("_");  // "+" is no identifier character
  setFrameTime();
  prevFrameTime = frameTime;
}

void VrmlDB::useVrmlTypeIds() { usingVrmlTypeIds = 1; }
void VrmlDB::useToolkitTypeIds() { usingVrmlTypeIds = 0; }

SoNode* VrmlDB::read(SoInput* in) {
  ReadStatus status;
  return read(in, status);
}

SoNode* VrmlDB::read(SoInput* in, ReadStatus& status, const ReadOptions& options) {
  if (OpenText* open = attachedText(in)) {
    OpenText text = std::move(*open);
    attached().erase(in);
    return readAll(std::move(text), status);
  }
  if (beginsAsToolkitFile(in)) return readForeign(in, status);
  std::string complaint;
  auto text = takeTextOnce(in, complaint);
  auto reader = makeReader(std::move(text), nameOf(in), complaint, options, status);
  return reader ? readAll({std::move(reader)}, status) : nullptr;
}

SoNode* VrmlDB::read(std::string_view bytes, const char* fileName, ReadStatus& status,
                     const ReadOptions& options) {
  std::string complaint;
  auto text = tessel::takeText(bytes, fileName, complaint);
  auto reader = makeReader(std::move(text), fileName, complaint, options, status);
  return reader ? readAll({std::move(reader)}, status) : nullptr;
}

SoNode* VrmlDB::readNode(SoInput* in, int& error) {
  error = 1;
  OpenText* text = attachedText(in);
  if (!text) {
    std::string complaint;
    ReadStatus status;
    auto taken = takeTextOnce(in, complaint);
    auto reader = makeReader(std::move(taken), nameOf(in), complaint, {}, status);
    if (!reader) {
      error = status == ReadStatus::failed;
      return nullptr;
    }
    text = &attached().insert_or_assign(in, OpenText{std::move(reader)}).first->second;
    mark(in, attachedMark);
  }
  const Reading reading;
  bool failed = false;
  SoRef<VrmlNode> node;
  {
    const PrototypeStack::Use scope(*text->prototypes);
    node = text->reader->readTopNode(failed);
  }
  error = failed;
  if (!node) attached().erase(in);
  return node.release();
}

int VrmlDB::isIdentifierChar(char c) { return tessel::Lexer::isIdentifierChar(c); }

int VrmlDB::isIdentifier(const SbString& text) {
  const std::string_view all(text.getString(), static_cast<std::size_t>(text.getLength()));
  return !all.empty() && std::ranges::all_of(all, tessel::Lexer::isIdentifierChar);
}

int VrmlDB::readIdentifier(SoInput* in, SbName& name) {
  if (OpenText* open = attachedText(in)) {
    const std::string_view text = open->reader->lexer().identifier();
    if (!text.empty()) name = SbName(std::string(text).c_str());
    return !text.empty();
  }
  constexpr std::size_t maxLength = 1023;
  char c = 0;
  bool inRemark = false;
  do {
    if (!in->get(c)) return 0;
    inRemark = inRemark ? c != '\n' && c != '\r' : c == '#';
  } while (inRemark || c == ',' || std::isspace(static_cast<unsigned char>(c)));
  std::string text;
  bool more = true;
  for (; more && isIdentifierChar(c); more = in->get(c))
    if (text.size() < maxLength) text.push_back(c);
  if (more) in->putBack(c);
  if (!text.empty()) name = SbName(text.c_str());
  return !text.empty();
}

const SbTime& VrmlDB::getFrameTime() { return frameTime; }
const SbTime& VrmlDB::getPrevFrameTime() { return prevFrameTime; }

void VrmlDB::setFrameTime() {
  prevFrameTime = frameTime;
  frameTime = realTime ? realTime->getValue() : SbTime::getTimeOfDay();
}

void VrmlDB::takeClock(const SbTime& start) {
  SoDB::enableRealTimeSensor(FALSE);
  SoSceneManager::enableRealTimeUpdate(FALSE);
  setClock(start);
}

void VrmlDB::setClock(const SbTime& now) {
  if (auto* field = static_cast<SoSFTime*>(SoDB::getGlobalField("realTime"))) field->setValue(now);
}

void VrmlDB::setBaseURL(const char* url) { baseURL = url ? url : ""; }

void VrmlDB::preFileReadCB_v2(void*, SoInput*) { useVrmlTypeIds(); }
void VrmlDB::postFileReadCB_v2(void*, SoInput*) { useToolkitTypeIds(); }
void VrmlDB::preFileReadCB_v1(void*, SoInput* in) { SoReadError::post(in, "%s", convertFromV1); }
void VrmlDB::postFileReadCB_v1(void*, SoInput*) {}
