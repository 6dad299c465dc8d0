// SPDX-License-Identifier: BSD-3-Clause
#include "toolkit/SourceText.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <memory>

#include <zlib.h>

#include <Inventor/SbString.h>
#include <Inventor/SoInput.h>

namespace tessel {

namespace {

constexpr std::size_t maxBytes = std::size_t{2} << 30;
constexpr const char* tooLarge = "The file holds more than 2 GiB of text";

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

bool isGzip(std::string_view bytes) {
  return bytes.size() > 2 && bytes[0] == '\x1f' && static_cast<unsigned char>(bytes[1]) == 0x8b;
}

// Inflates all members of a gzip file. A damaged file gives what could be had and a complaint.
bool inflateAll(std::string_view packed, std::string& out, std::string& complaint) {
  z_stream stream{};
  if (inflateInit2(&stream, 15 + 16) != Z_OK) {
    complaint = "No memory to unpack the file";
    return false;
  }
  const std::unique_ptr<z_stream, int (*)(z_stream*)> guard(&stream, inflateEnd);
  std::size_t taken = 0;
  std::array<char, 1 << 16> block;
  for (;;) {
    if (stream.avail_in == 0 && taken < packed.size()) {
      const std::size_t n = std::min<std::size_t>(packed.size() - taken, 1 << 30);
      stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data() + taken));
      stream.avail_in = static_cast<uInt>(n);
      taken += n;
    }
    stream.next_out = reinterpret_cast<Bytef*>(block.data());
    stream.avail_out = block.size();
    const int result = inflate(&stream, Z_NO_FLUSH);
    out.append(block.data(), block.size() - stream.avail_out);
    if (out.size() > maxBytes) {
      complaint = tooLarge;
      return false;
    }
    if (result == Z_STREAM_END) {
      const bool another = stream.avail_in >= 2 && stream.next_in[0] == 0x1f && stream.next_in[1] == 0x8b;
      if (!another || inflateReset(&stream) != Z_OK) return true;
    } else if (result != Z_OK) {
      complaint = "The compressed file is damaged or cut off";
      return false;
    }
  }
}

// Compares ignoring letter case; any run of blanks in `line` matches one in `pattern`.
bool looselyBegins(std::string_view line, std::string_view pattern) {
  std::size_t i = 0;
  for (char p : pattern) {
    if (p == ' ') {
      const std::size_t from = i;
      while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) ++i;
      if (i == from) return false;
    } else if (i < line.size() && std::tolower(static_cast<unsigned char>(line[i])) ==
                                      std::tolower(static_cast<unsigned char>(p))) {
      ++i;
    } else {
      return false;
    }
  }
  return true;
}

Header headerOf(std::string_view line) {
  for (const char* exact : {"#VRML V2.0 utf8", "#VRML Draft #1 V2.0 utf8", "#VRML Draft #2 V2.0 utf8"})
    if (line.starts_with(exact)) return Header::vrml2;
  if (looselyBegins(line, "#VRML V2.0 utf8")) return Header::vrml2Odd;
  if (looselyBegins(line, "#VRML V1.0 ascii")) return Header::vrml1;
  if (line.starts_with("#Inventor V")) return Header::toolkit;
  return Header::none;
}

// Finds header and body; the body starts at `from` at the earliest.
void findBody(SourceText& source, std::size_t from) {
  const std::string_view text = source.text();
  const std::size_t mark = text.starts_with("\xef\xbb\xbf") ? 3 : 0;
  const std::size_t lineEnd = std::min(text.find_first_of("\r\n", mark), text.size());
  source.header = headerOf(text.substr(mark, lineEnd - mark));
  source.bodyStart = std::min(std::max(source.header == Header::none ? mark : lineEnd, from), text.size());
}

// The bytes of a file on disk; nothing for what is no regular file.
std::optional<std::string> slurp(const char* path, std::string& complaint) {
  const File file(std::fopen(path, "rb"));
  struct stat info {};
  if (!file || fstat(fileno(file.get()), &info) != 0 || !S_ISREG(info.st_mode)) return std::nullopt;
  if (static_cast<std::size_t>(info.st_size) > maxBytes) {
    complaint = tooLarge;
    return std::nullopt;
  }
  std::string bytes(static_cast<std::size_t>(info.st_size), '\0');
  bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file.get()));  // it may have shrunk meanwhile
  return bytes;
}

// What an input holds from where it stands, block by block. The last, short block is reported as a failure
// but has been delivered; zeros at its end are taken for what was not.
bool drain(SoInput& in, std::string& out) {
  constexpr int blockSize = 1 << 16;
  std::array<char, blockSize> block;
  for (;;) {
    std::memset(block.data(), 0, block.size());
    const bool whole = in.readBinaryArray(reinterpret_cast<unsigned char*>(block.data()), blockSize);
    std::size_t n = blockSize;
    if (!whole)
      while (n > 0 && block[n - 1] == '\0') --n;
    out.append(block.data(), n);
    if (out.size() > maxBytes) return false;
    if (!whole) return true;
  }
}

bool unpackIfNeeded(SourceText& source, std::string& complaint) {
  if (!isGzip(source.text())) return true;
  std::string unpacked;
  if (!inflateAll(source.text(), unpacked, complaint)) return false;
  source.bytes = std::move(unpacked);
  source.lent = {};
  return true;
}

}  // namespace

std::optional<SourceText> takeText(std::string_view bytes, std::string_view fileName,
                                   std::string& complaint) {
  std::optional<SourceText> source(std::in_place);
  source->lent = bytes;
  source->fileName = fileName;
  if (!unpackIfNeeded(*source, complaint)) return std::nullopt;
  findBody(*source, 0);
  return source;
}

std::optional<SourceText> takeText(SoInput& in, std::string& complaint) {
  std::optional<SourceText> source(std::in_place);
  const char* name = in.getCurFileName();
  source->fileName = name && *name ? name : "<memory>";

  const std::size_t alreadyTaken = in.getNumBytesRead();
  if (name && *name) {
    if (std::optional<std::string> bytes = slurp(name, complaint)) {
      source->bytes = std::move(*bytes);
      if (!unpackIfNeeded(*source, complaint)) return std::nullopt;
      findBody(*source, alreadyTaken);
      return source;
    }
    if (!complaint.empty()) return std::nullopt;
  }

  // The toolkit takes a header that it knows out of the stream, with one character behind it, and leaves anything else
  // in it. That character is taken once more: it may be half of a line end.
  std::string header, body;
  if (in.isValidFile() && in.getNumBytesRead() > 0) {
    header = in.getHeader().getString();
    in.putBack('\n');
  }
  if (!drain(in, body)) {
    complaint = tooLarge;
    return std::nullopt;
  }
  if (!header.empty() && !body.empty() && body.front() != '\r') body.front() = '\n';
  source->bytes = header + body;
  if (!unpackIfNeeded(*source, complaint)) return std::nullopt;
  findBody(*source, 0);
  return source;
}

}  // namespace tessel
