// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <optional>
#include <string>
#include <string_view>

class SoInput;

namespace tessel {

/// What the first line of a file says it is.
enum class Header {
  vrml2,     ///< one of the three V2 headers
  vrml2Odd,  ///< the same with several blanks or other letter case: passes with a warning
  vrml1,
  toolkit,  ///< an Inventor file
  none,
};

/// The text of a world and where its body starts.
struct SourceText {
  std::string bytes;      ///< the whole text, none if it is in the caller's memory
  std::string_view lent;  ///< of the caller's memory
  std::string fileName;   ///< for messages
  Header header = Header::none;
  std::size_t bodyStart = 0;  ///< behind header line and byte-order mark

  /// The whole text, for as long as this is not moved.
  std::string_view text() const { return bytes.empty() ? lent : std::string_view(bytes); }
};

/// Takes the text that an input holds: a file on disk is read anew in one go, anything else in blocks from
/// where the input stands. Compressed files are given as what they hold.
/// Nothing if it can't be read or passes the limit of 2 GiB; `complaint` then says why.
std::optional<SourceText> takeText(SoInput& in, std::string& complaint);
/// The same for a world in memory, which must outlive the result unless it is compressed.
std::optional<SourceText> takeText(std::string_view bytes, std::string_view fileName, std::string& complaint);

}  // namespace tessel
