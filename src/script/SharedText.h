// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace tessel::script {

/// A text that shares its characters with texts that were made by appending to it: appending to
/// the longest of them only adds characters, so a text that is built piece by piece costs what its pieces cost.
class SharedText {
public:
  /// No script makes a longer one.
  static constexpr std::size_t limit = std::size_t{1} << 24;

  SharedText() = default;
  explicit SharedText(std::string_view text)
      : characters(std::make_shared<std::string>(text)), length(text.size()) {}

  std::string_view view() const {
    return characters ? std::string_view(*characters).substr(0, length) : std::string_view();
  }
  std::size_t size() const { return length; }

  /// Takes another text, in the same memory if nobody shares it.
  void become(std::string_view text) {
    if (characters && characters.use_count() == 1) {
      characters->assign(text);
      length = text.size();
    } else {
      *this = SharedText(text);
    }
  }

  /// Lets go of the text, but not of its memory if that is no more than so many characters and nobody shares it.
  void leave(std::size_t kept) {
    if (characters && characters.use_count() == 1 && characters->capacity() <= kept) {
      characters->clear();
      length = 0;
    } else {
      *this = SharedText();
    }
  }

  SharedText plus(std::string_view more) const {
    SharedText sum;
    if (characters && characters->size() == length) {
      sum.characters = characters;
    } else {
      sum.characters = std::make_shared<std::string>(view());
    }
    sum.characters->append(more);
    sum.length = length + more.size();
    return sum;
  }

private:
  std::shared_ptr<std::string> characters;  // this text and what was appended
  std::size_t length = 0;
};

}  // namespace tessel::script
