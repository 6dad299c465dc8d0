// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <numeric>
#include <span>

#include <Inventor/SoInput.h>

#include <tessel/textures/ImageLimit.h>

#include "Traversals.h"
#include "textures/ImageReaders.h"

namespace tessel::fuzz {

/// Gives a file of these bytes to a reader, and looks at all that it gives.
inline void readImage(ImageReader reader, std::span<const std::uint8_t> bytes) {
  // Few bytes may make a large image; a run is to end in milliseconds all the same.
  constexpr std::int64_t mostPixels = 100'000;
  static const bool started = (start(), setImagePixelLimit(mostPixels), true);
  (void)started;

  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(fdopen(memfd_create("image", 0), "r+b"),
                                                             &std::fclose);
  if (write(fileno(file.get()), bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
    __builtin_trap();
  SoInput in;
  in.setFilePointer(file.get());
  int width = 0, height = 0, components = 0;
  unsigned char* given = nullptr;
  if (!reader(in, width, height, components, given)) return;
  const std::unique_ptr<unsigned char[]> pixels(given);
  if (width < 1 || height < 1 || std::int64_t{width} * height > mostPixels || components < 1 ||
      components > 4)
    __builtin_trap();
  unsigned char* const end = given + std::ptrdiff_t{width} * height * components;
  [[maybe_unused]] const volatile unsigned sum = std::accumulate(pixels.get(), end, 0U);
}

}  // namespace tessel::fuzz
