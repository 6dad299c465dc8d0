// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

/// An open file of the RGB image format: a header of 512 bytes, then rows of values of one channel each, verbatim or
/// run-length. A run-length file has tables of where its rows begin and how long they are. Numbers are big-endian,
/// or all the other way round.
struct RgbImage {
  static constexpr std::size_t headerBytes = 152;  ///< of the file's header that are read and written
  static constexpr off_t dataOffset = 512;         ///< where the header ends

  // What stands in the file.
  std::uint16_t magic = 474;
  std::uint16_t type = 0;   ///< high byte 0 verbatim, 1 run-length; low byte: bytes a value, 1 or 2
  std::uint16_t dim = 0;    ///< 1, 2 or 3: how many of the sizes count
  std::uint16_t xsize = 0;  ///< width
  std::uint16_t ysize = 0;  ///< height
  std::uint16_t zsize = 0;  ///< channels
  std::uint32_t min = 10'000'000;
  std::uint32_t max = 0;
  std::uint32_t lostBytes = 0;  ///< of rows that were written again
  char name[80] = "no name";
  std::uint32_t colormap = 0;

  // The state of the work.
  int file = -1;
  enum : unsigned { reading = 1, writing = 2 };
  unsigned flags = 0;
  bool byteSwapped = false;  ///< the file's numbers are little-endian
  unsigned y = 0, z = 0;     ///< the row that was last sought
  off_t offset = 0;          ///< of the next read or write
  off_t fileEnd = 0;         ///< where the next run-length row is written
  std::vector<std::uint32_t> rowstart;
  std::vector<std::uint32_t> rowsize;  ///< all ones for a row that is not there

  /// A stretch of the file that was read ahead, one a channel, since rows of different channels lie far apart.
  struct Window {
    off_t start = 0;
    std::size_t length = 0;
    unsigned char* bytes = nullptr;
  };
  static constexpr std::size_t windows = 4;
  Window ahead[windows];
  std::size_t windowBytes = 0;
  /// The windows' bytes of a file that is read; what waits to be written, at `offset` - `pending`, of one that is
  /// written.
  std::unique_ptr<unsigned char[]> tmpbuf;
  std::size_t tmpbufBytes = 0;
  std::size_t pending = 0;

  int bytesPerValue() const { return type & 0xff; }
  bool isVerbatim() const { return (type & 0xff00) == 0x0000; }
  bool isRunLength() const { return (type & 0xff00) == 0x0100; }
  std::size_t tableLength() const { return std::size_t{ysize} * zsize; }
};

/// What a C function of this library reports takes this road: the finished message, with its line end.
using RgbErrorHandler = void (*)(const char* message);

extern "C" {

/// Opens a file by its name, to be read (mode "r", all else comes from its header) or written ("w"). Null after an
/// error. Memory for the tables of a run-length file is only taken if the file is long enough to hold them.
RgbImage* iopen(const char* name, const char* mode, unsigned type, unsigned dim, unsigned xsize,
                unsigned ysize, unsigned zsize);

/// The same on a descriptor, which `iclose` closes; after an error it stays open. Reading does not move its offset.
RgbImage* fiopen(int fd, const char* mode, unsigned type, unsigned dim, unsigned xsize, unsigned ysize,
                 unsigned zsize);

/// Row y of channel z, from the bottom, as `xsize` values. Gives `xsize`, or -1 after an error. A row that is out of
/// range is reported, and the one that was last sought is read on.
int getrow(RgbImage* image, unsigned short* buffer, unsigned y, unsigned z);

/// Writes row y of channel z. Gives `xsize`, or -1 after an error.
int putrow(RgbImage* image, const unsigned short* buffer, unsigned y, unsigned z);

/// Hands to the system what has been written; 0, or -1 after an error.
int iflush(RgbImage* image);

/// Ends the work: what is written gets its header and tables. Closes the descriptor and deletes the image. 0, -1
/// after an error, or the result of `close`.
int iclose(RgbImage* image);

/// The name in the file, of which 80 bytes count, and the kind of its colour map.
void isetname(RgbImage* image, const char* name);
void isetcolormap(RgbImage* image, int value);

/// Who gets the library's errors; null for `postPlain` and the end of the process with status 1.
void i_seterror(RgbErrorHandler handler);

}  // extern "C"
