// SPDX-License-Identifier: BSD-3-Clause
#include "textures/RgbImage.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#include <tessel/toolkit/PlainReport.h>

#include "textures/RgbRunLength.h"

using tessel::BigEndianItems;
using tessel::ByteItems;
using tessel::LittleEndianItems;

namespace {

constexpr std::uint16_t rgbMagic = 474;
constexpr std::size_t bufferBytes = 64 * 1024;
constexpr std::size_t noRow = 0xffff;  // the low 16 bits of a row's length that say that there is none

RgbErrorHandler errorHandler = nullptr;

template <class... Values> void report(const char* format, Values... values) {
  char text[1024];
  if constexpr (sizeof...(values) == 0)
    std::snprintf(text, sizeof text, "%s", format);
  else
    std::snprintf(text, sizeof text, format, values...);
  if (errorHandler) return errorHandler(text);
  tessel::postPlain(text);
  std::exit(1);
}

/// Reads as much as is there, up to `count` bytes.
std::size_t readAt(int file, unsigned char* to, std::size_t count, off_t offset) {
  std::size_t done = 0;
  while (done < count) {
    const ssize_t got = pread(file, to + done, count - done, offset + static_cast<off_t>(done));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    done += static_cast<std::size_t>(got);
  }
  return done;
}

bool writeAt(int file, const unsigned char* from, std::size_t count, off_t offset) {
  while (count > 0) {
    const ssize_t put = pwrite(file, from, count, offset);
    if (put < 0 && errno == EINTR) continue;
    if (put <= 0) return false;
    from += put;
    offset += put;
    count -= static_cast<std::size_t>(put);
  }
  return true;
}

// The header and the tables.

/// Goes over the header's 152 bytes field by field: into the image, or out of it, big-endian unless `swapped`.
class HeaderBytes {
public:
  HeaderBytes(unsigned char* bytes, bool littleEndian) : at(bytes), swapped(littleEndian) {}

  template <class Number> void read(Number& value) {
    value = 0;
    for (std::size_t i = 0; i < sizeof value; ++i)
      value = static_cast<Number>(value | Number{at[swapped ? i : sizeof value - 1 - i]} << (8 * i));
    at += sizeof value;
  }
  template <class Number> void write(Number value) {
    for (std::size_t i = 0; i < sizeof value; ++i)
      at[sizeof value - 1 - i] = static_cast<unsigned char>(value >> 8 * i);
    at += sizeof value;
  }
  unsigned char* take(std::size_t count) { return std::exchange(at, at + count); }

private:
  unsigned char* at;
  bool swapped;
};

void readHeader(RgbImage& image, unsigned char* bytes) {
  HeaderBytes in(bytes, image.byteSwapped);
  for (std::uint16_t* field :
       {&image.magic, &image.type, &image.dim, &image.xsize, &image.ysize, &image.zsize})
    in.read(*field);
  for (std::uint32_t* field : {&image.min, &image.max, &image.lostBytes}) in.read(*field);
  std::memcpy(image.name, in.take(sizeof image.name), sizeof image.name);
  in.read(image.colormap);
}

bool writeHeader(const RgbImage& image) {
  unsigned char bytes[RgbImage::headerBytes] = {};
  HeaderBytes out(bytes, false);
  for (std::uint16_t field : {image.magic, image.type, image.dim, image.xsize, image.ysize, image.zsize})
    out.write(field);
  for (std::uint32_t field : {image.min, image.max, image.lostBytes}) out.write(field);
  std::memcpy(out.take(sizeof image.name), image.name, sizeof image.name);
  out.write(image.colormap);
  return writeAt(image.file, bytes, sizeof bytes, 0);
}

constexpr bool nativeIsBigEndian = std::endian::native == std::endian::big;

void swapBytes(std::vector<std::uint32_t>& table) {
  for (std::uint32_t& n : table) n = n >> 24 | (n >> 8 & 0xff00) | (n << 8 & 0xff0000) | n << 24;
}

bool readTable(const RgbImage& image, std::vector<std::uint32_t>& table, off_t offset) {
  const std::size_t bytes = table.size() * sizeof table[0];
  if (readAt(image.file, reinterpret_cast<unsigned char*>(table.data()), bytes, offset) != bytes)
    return false;
  if (image.byteSwapped == nativeIsBigEndian) swapBytes(table);
  return true;
}

bool writeTable(const RgbImage& image, std::vector<std::uint32_t> table, off_t offset) {
  if (!nativeIsBigEndian) swapBytes(table);
  return writeAt(image.file, reinterpret_cast<const unsigned char*>(table.data()),
                 table.size() * sizeof table[0], offset);
}

off_t tableBytes(const RgbImage& image) {
  return static_cast<off_t>(image.tableLength() * sizeof(std::uint32_t));
}

bool allocateTables(RgbImage& image) {
  try {
    image.rowstart.resize(image.tableLength(), 0);
    image.rowsize.resize(image.tableLength(), ~std::uint32_t{0});
    return true;
  } catch (const std::bad_alloc&) {
    report("iopen: error on table alloc\n");
    return false;
  }
}

bool allocateBuffer(RgbImage& image, std::size_t bytes) {
  image.tmpbufBytes = bytes;
  image.tmpbuf.reset(new (std::nothrow) unsigned char[bytes]);
  if (!image.tmpbuf) report("iopen: error on tmpbuf alloc %d\n", static_cast<int>(bytes));
  return image.tmpbuf != nullptr;
}

// Reading and writing of stretches of the file.

bool img_badrow(const RgbImage& image, unsigned y, unsigned z) {
  return y >= image.ysize || z >= image.zsize;
}

std::size_t rowIndex(const RgbImage& image) { return image.y + std::size_t{image.z} * image.ysize; }

/// Goes to an offset, where what waited for the old one has been written.
bool img_optseek(RgbImage& image, off_t offset) {
  if (image.offset == offset) return true;
  if (image.flags == RgbImage::writing && iflush(&image) != 0) return false;
  image.offset = offset;
  return true;
}

/// Goes to a row. One that is out of range leaves all as it was.
bool img_seek(RgbImage& image, unsigned y, unsigned z) {
  if (img_badrow(image, y, z)) {
    report("img_seek: row number out of range\n");
    return false;
  }
  image.y = y;
  image.z = z;
  if (image.dim < 1 || image.dim > 3) {
    report("img_seek: weird dim\n");
    return false;
  }
  const std::size_t row = rowIndex(image);
  if (image.isVerbatim())
    return img_optseek(
        image, RgbImage::dataOffset +
                   static_cast<off_t>(row * image.xsize * static_cast<std::size_t>(image.bytesPerValue())));
  if (image.isRunLength())
    return img_optseek(image, image.flags == RgbImage::reading ? image.rowstart[row] : image.fileEnd);
  report("img_seek: weird image type\n");
  return false;
}

/// The next bytes of the file, of channel z; null if it ends before.
const unsigned char* img_read(RgbImage& image, std::size_t count) {
  RgbImage::Window& window = image.ahead[image.z % RgbImage::windows];
  if (image.offset < window.start ||
      image.offset + static_cast<off_t>(count) > window.start + static_cast<off_t>(window.length)) {
    if (count > image.windowBytes) return nullptr;
    window.start = image.offset;
    window.length = readAt(image.file, window.bytes, image.windowBytes, image.offset);
    if (count > window.length) return nullptr;
  }
  const unsigned char* const bytes = window.bytes + (image.offset - window.start);
  image.offset += static_cast<off_t>(count);
  return bytes;
}

/// Room for the next `count` bytes of the file.
unsigned char* img_write(RgbImage& image, std::size_t count) {
  if (image.pending + count > image.tmpbufBytes && iflush(&image) != 0) return nullptr;
  return image.tmpbuf.get() + image.pending;
}

void img_written(RgbImage& image, std::size_t count) {
  image.pending += count;
  image.offset += static_cast<off_t>(count);
}

/// The length of the row that was last sought, as a 16-bit number.
std::size_t img_getrowsize(const RgbImage& image) {
  const std::size_t row = rowIndex(image);
  return row < image.rowsize.size() ? image.rowsize[row] & 0xffff : noRow;
}

/// Enters the row that was last sought: it goes to the end of the file.
void img_setrowsize(RgbImage& image, std::size_t length) {
  const std::size_t row = rowIndex(image);
  if (image.rowsize[row] != ~std::uint32_t{0}) image.lostBytes += image.rowsize[row];
  image.rowsize[row] = static_cast<std::uint32_t>(length);
  image.rowstart[row] = static_cast<std::uint32_t>(image.fileEnd);
  image.fileEnd += static_cast<off_t>(length);
}

template <class Items> int readRow(RgbImage& image, unsigned short* buffer) {
  const std::size_t width = image.xsize;
  const std::size_t length = image.isVerbatim() ? width * Items::size : img_getrowsize(image);
  if (length == noRow && !image.isVerbatim()) return -1;
  const unsigned char* const bytes = img_read(image, length);
  if (!bytes) {
    report("getrow: error on read of row\n");
    return -1;
  }
  if (image.isRunLength())
    tessel::img_rle_expand<Items>(bytes, length, buffer, width);
  else
    for (std::size_t x = 0; x < width; ++x) buffer[x] = Items::get(bytes + x * Items::size);
  return image.xsize;
}

template <class Items> int writeRow(RgbImage& image, const unsigned short* buffer) {
  const std::size_t width = image.xsize;
  unsigned char* const bytes = img_write(image, tessel::longestPacked<Items>(width));
  if (!bytes) {
    report("putrow: error on write of row\n");
    return -1;
  }
  if (image.isRunLength()) {
    const std::size_t length = tessel::img_rle_compact<Items>(buffer, width, bytes);
    img_setrowsize(image, length);
    img_written(image, length);
  } else {
    for (std::size_t x = 0; x < width; ++x) Items::put(bytes + x * Items::size, buffer[x]);
    img_written(image, width * Items::size);
  }
  return image.xsize;
}

// Opening.

bool openForReading(RgbImage& image) {
  image.flags = RgbImage::reading;
  unsigned char header[RgbImage::headerBytes];
  if (readAt(image.file, header, sizeof header, 0) != sizeof header) {
    report("iopen: error on read of image header\n");
    return false;
  }
  image.byteSwapped = LittleEndianItems::get(header) == rgbMagic;
  readHeader(image, header);
  if (image.magic != rgbMagic) {
    report("iopen: bad magic in image file %x\n", static_cast<unsigned>(image.magic));
    return false;
  }
  struct stat status {};
  if (fstat(image.file, &status) != 0) status.st_size = 0;
  if (image.isRunLength()) {
    const off_t sizes = RgbImage::dataOffset + tableBytes(image);
    const bool holdsStarts = status.st_size >= sizes;
    const bool holdsSizes = status.st_size >= sizes + tableBytes(image);
    if (holdsSizes && !allocateTables(image)) return false;
    if (!holdsStarts || (holdsSizes && !readTable(image, image.rowstart, RgbImage::dataOffset))) {
      report("iopen: error on read of rowstart\n");
      return false;
    }
    if (!holdsSizes || !readTable(image, image.rowsize, sizes)) {
      report("iopen: error on read of rowsize\n");
      return false;
    }
  }
  image.windowBytes = std::min(std::max(bufferBytes, image.xsize * BigEndianItems::size),
                               static_cast<std::size_t>(status.st_size));
  if (!allocateBuffer(image, RgbImage::windows * image.windowBytes)) return false;
  for (std::size_t i = 0; i < RgbImage::windows; ++i)
    image.ahead[i].bytes = image.tmpbuf.get() + i * image.windowBytes;
  image.offset = RgbImage::dataOffset;
  return true;
}

bool openForWriting(RgbImage& image, unsigned type, unsigned xsize, unsigned ysize, unsigned zsize) {
  image.flags = RgbImage::writing;
  image.type = static_cast<std::uint16_t>(type);
  image.xsize = static_cast<std::uint16_t>(xsize);
  image.ysize = static_cast<std::uint16_t>(ysize);
  image.zsize = static_cast<std::uint16_t>(zsize);
  image.dim = zsize != 1 ? 3 : ysize != 1 ? 2 : 1;
  if (!writeHeader(image)) {
    report("iopen: error on write of image header\n");
    return false;
  }
  if (image.isRunLength() && !allocateTables(image)) return false;
  image.fileEnd = RgbImage::dataOffset + 2 * tableBytes(image);
  image.offset = RgbImage::dataOffset;
  return allocateBuffer(image, bufferBytes + tessel::longestPacked<BigEndianItems>(image.xsize));
}

bool isReadWrite(const char* mode) {
  if (mode[0] == '\0' || mode[1] != '+') return false;
  report("iopen: read/write mode not supported\n");
  return true;
}

}  // namespace

RgbImage* iopen(const char* name, const char* mode, unsigned type, unsigned dim, unsigned xsize,
                unsigned ysize, unsigned zsize) {
  if (isReadWrite(mode)) return nullptr;
  constexpr mode_t forAll = 0666;
  const bool write = *mode == 'w';
  const int file =
      write ? open(name, O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, forAll) : open(name, O_RDONLY | O_CLOEXEC);
  if (file < 0) {
    if (write) report("iopen: can't open output file %s\n", name);
    return nullptr;
  }
  RgbImage* const image = fiopen(file, mode, type, dim, xsize, ysize, zsize);
  if (!image) close(file);
  return image;
}

RgbImage* fiopen(int fd, const char* mode, unsigned type, unsigned, unsigned xsize, unsigned ysize,
                 unsigned zsize) {
  if (isReadWrite(mode)) return nullptr;
  std::unique_ptr<RgbImage> image(new (std::nothrow) RgbImage);
  if (!image) {
    report("iopen: error on image struct alloc\n");
    return nullptr;
  }
  image->file = fd;
  const bool opened =
      *mode == 'w' ? openForWriting(*image, type, xsize, ysize, zsize) : openForReading(*image);
  return opened ? image.release() : nullptr;
}

int getrow(RgbImage* image, unsigned short* buffer, unsigned y, unsigned z) {
  if (image->flags != RgbImage::reading) return -1;
  img_seek(*image, image->dim < 2 ? 0 : y, image->dim < 3 ? 0 : z);
  if (!image->isVerbatim() && !image->isRunLength()) {
    report("getrow: weird image type\n");
    return -1;
  }
  switch (image->bytesPerValue()) {
    case 1:
      return readRow<ByteItems>(*image, buffer);
    case 2:
      return image->byteSwapped ? readRow<LittleEndianItems>(*image, buffer)
                                : readRow<BigEndianItems>(*image, buffer);
    default:
      report("getrow: weird bpp\n");
      return -1;
  }
}

int putrow(RgbImage* image, const unsigned short* buffer, unsigned y, unsigned z) {
  if (image->flags != RgbImage::writing) return -1;
  if (!image->isVerbatim() && !image->isRunLength()) {
    report("putrow: weird image type\n");
    return -1;
  }
  if (!img_seek(*image, image->dim < 2 ? 0 : y, image->dim < 3 ? 0 : z)) return -1;
  for (std::size_t x = 0; x < image->xsize; ++x) {
    image->min = std::min<std::uint32_t>(image->min, buffer[x]);
    image->max = std::max<std::uint32_t>(image->max, buffer[x]);
  }
  switch (image->bytesPerValue()) {
    case 1:
      return writeRow<ByteItems>(*image, buffer);
    case 2:
      return writeRow<BigEndianItems>(*image, buffer);
    default:
      report("putrow: weird bpp\n");
      return -1;
  }
}

int iflush(RgbImage* image) {
  if (image->flags != RgbImage::writing) return 0;
  const std::size_t count = std::exchange(image->pending, 0);
  return writeAt(image->file, image->tmpbuf.get(), count, image->offset - static_cast<off_t>(count)) ? 0 : -1;
}

int iclose(RgbImage* image) {
  const std::unique_ptr<RgbImage> owned(image);
  bool whole = true;
  const auto check = [&whole](bool done, const char* complaint) {
    if (!done) report(complaint);
    whole = whole && done;
  };
  if (image->flags == RgbImage::writing) {
    check(iflush(image) == 0, "putrow: error on write of row\n");
    check(writeHeader(*image), "iclose: error on write of image header\n");
    if (image->isRunLength()) {
      check(writeTable(*image, image->rowstart, RgbImage::dataOffset),
            "iclose: error on write of rowstart\n");
      check(writeTable(*image, image->rowsize, RgbImage::dataOffset + tableBytes(*image)),
            "iclose: error on write of rowsize\n");
    }
  }
  const int closed = close(image->file);
  if (closed != 0) report("iclose: error on close of file\n");
  return whole ? closed : -1;
}

void isetname(RgbImage* image, const char* name) {
  const std::size_t length = strnlen(name, sizeof image->name);
  std::memset(image->name, 0, sizeof image->name);
  std::memcpy(image->name, name, length);
}

void isetcolormap(RgbImage* image, int value) { image->colormap = static_cast<std::uint32_t>(value); }

void i_seterror(RgbErrorHandler handler) { errorHandler = handler; }
