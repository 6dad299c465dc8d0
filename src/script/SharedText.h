// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "core/Effort.h"
#include "script/Room.h"

namespace tessel::script {

/// A text that shares its characters with texts that were made by appending to it: appending to the longest of them
/// only adds characters, so a text that is built piece by piece costs what its pieces cost.
class SharedText {
public:
  /// No script makes a longer one.
  static constexpr std::size_t limit = std::size_t{1} << 24;

  SharedText() = default;
  explicit SharedText(std::string_view text) : characters(made(text)), length(text.size()) {}

  std::string_view view() const {
    return characters ? std::string_view(characters->text).substr(0, length) : std::string_view();
  }
  std::size_t size() const { return length; }

  /// Takes another text, in the same memory if nobody shares it.
  void become(std::string_view text) {
    if (characters && characters.use_count() == 1) {
      Effort::add(text.size());
      characters->text.assign(text);
      characters->count();
      length = text.size();
    } else {
      *this = SharedText(text);
    }
  }

  /// Lets go of the text, but not of its memory if that is no more than so many characters and nobody shares it.
  void leave(std::size_t kept) {
    if (characters && characters.use_count() == 1 && characters->text.capacity() <= kept) {
      characters->text.clear();
      length = 0;
    } else {
      *this = SharedText();
    }
  }

  SharedText plus(std::string_view more) const {
    SharedText sum;
    if (characters && characters->text.size() == length) {
      sum.characters = characters;
    } else {
      sum.characters = made(view());
    }
    Effort::add(more.size());
    sum.characters->text.append(more);
    sum.characters->count();
    sum.length = length + more.size();
    return sum;
  }

private:
  struct Characters {
    explicit Characters(std::string_view text) : text(text) { count(); }
    void count() { room.take(text.capacity()); }
    std::string text;
    Room room;
  };
  static std::shared_ptr<Characters> made(std::string_view text) {
    Effort::add(text.size());
    return std::make_shared<Characters>(text);
  }

  std::shared_ptr<Characters> characters;  // this text and what was appended
  std::size_t length = 0;
};

}  // namespace tessel::script
