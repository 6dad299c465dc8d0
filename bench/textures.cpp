// SPDX-License-Identifier: BSD-3-Clause
// What do textures cost: a still frame of textured shapes beside the same draws with the same textures bound by hand,
// and many files beside their decoding alone?
//
// Run it with GALLIUM_NOOP=1 too: then the software driver does nothing, and only the library's own work is left.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <Inventor/system/gl.h>

#include <tessel/textures/VrmlTexture.h>

#include "Frame.h"
#include "support/Bench.h"

namespace {

/// Files of pictures, of the format that is easiest to write (RGB, verbatim), for as long as the object lives.
class PictureFiles {
public:
  PictureFiles(int count, int side) {
    std::string name = (std::filesystem::temp_directory_path() / "tessel-pictures-XXXXXX").string();
    if (!mkdtemp(name.data())) std::abort();
    folder = name;
    std::string bytes("\x01\xDA\0\x01\0\x03", 6);
    for (const int number : {side, side, 3}) {
      bytes += static_cast<char>(number / 256);
      bytes += static_cast<char>(number % 256);
    }
    bytes.resize(512 + static_cast<std::size_t>(side * side * 3));
    for (int i = 0; i < count; ++i) {
      for (std::size_t k = 512; k < bytes.size(); ++k)
        bytes[k] = static_cast<char>(k * 7 / 5 + static_cast<std::size_t>(i));
      std::ofstream(path(i), std::ios::binary) << bytes;
    }
  }
  ~PictureFiles() { std::filesystem::remove_all(folder); }
  std::string path(int i) const { return (folder / (std::to_string(i) + ".rgb")).string(); }

private:
  std::filesystem::path folder;
};

std::string place(int i) {
  return std::to_string(i % 10) + " " + std::to_string(i / 10 % 10) + " " + std::to_string(i / 100);
}

/// Shapes side by side, shape i with picture i % pictures.
std::string squares(int shapes, const PictureFiles& files, int pictures) {
  std::string text = "Group { children [ ";
  for (int i = 0; i < shapes; ++i)
    text += "Transform { translation " + place(i) +
            " children Shape { appearance Appearance { texture ImageTexture { url \"file://" +
            files.path(i % pictures) +
            "\" } } geometry IndexedFaceSet { coord Coordinate { point [ 0 0 0, 1 0 0, 1 1 0, 0 1 0 ] } "
            "coordIndex [ 0 1 2 3 ] } } }\n";
  return text + "] }\n";
}

/// The rival: one square a shape, with the textures bound by hand.
class ByHand {
public:
  ByHand(const Frame& f, int number, const PictureFiles& files, int pictures) : frame(f), shapes(number) {
    textures.resize(static_cast<std::size_t>(pictures));
    glGenTextures(pictures, textures.data());
    for (int i = 0; i < pictures; ++i) {
      int width, height, components;
      unsigned char* bytes;
      if (!VrmlTexture::readImage(files.path(i).c_str(), width, height, components, bytes)) std::abort();
      const std::unique_ptr<unsigned char[]> owned(bytes);
      glBindTexture(GL_TEXTURE_2D, textures[static_cast<std::size_t>(i)]);
      glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
      glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB, width, height, 0, GL_RGB, GL_UNSIGNED_BYTE, bytes);
    }
  }
  ~ByHand() { glDeleteTextures(static_cast<GLsizei>(textures.size()), textures.data()); }

  void draw() const {
    Frame::clear();
    frame.loadMatrices();
    glDisable(GL_LIGHTING);
    glEnable(GL_TEXTURE_2D);
    glColor3f(1, 1, 1);
    for (int i = 0; i < shapes; ++i) {
      glBindTexture(GL_TEXTURE_2D, textures[static_cast<std::size_t>(i) % textures.size()]);
      glPushMatrix();
      glTranslatef(static_cast<float>(i % 10), static_cast<float>(i / 10 % 10), static_cast<float>(i / 100));
      glBegin(GL_QUADS);
      for (const auto& [x, y] : {std::pair{0, 0}, {1, 0}, {1, 1}, {0, 1}}) {
        glTexCoord2i(x, y);
        glVertex3i(x, y, 0);
      }
      glEnd();
      glPopMatrix();
    }
    glDisable(GL_TEXTURE_2D);
    glFinish();
  }

private:
  const Frame& frame;
  int shapes;
  std::vector<GLuint> textures;
};

template <class Draw> auto drawing(Draw draw) {
  return [draw] {
    draw();
    return 0;
  };
}

void still(benchmark::State& state) {
  bench::start();
  const int shapes = static_cast<int>(state.range(0)), pictures = static_cast<int>(state.range(1));
  const PictureFiles files(pictures, 256);
  Frame frame(squares(shapes, files, pictures));
  const ByHand rival(frame, shapes, files, pictures);
  bench::Duel duel(state, 2);
  for (auto _ : state) {
    duel.rival(drawing([&] { rival.draw(); }));
    duel.library(drawing([&] { frame.draw(); }));
  }
}

/// Reading a world of so many pictures beside decoding and keeping them.
void load(benchmark::State& state) {
  bench::start();
  const int pictures = static_cast<int>(state.range(0));
  const PictureFiles files(pictures, 512);
  const std::string world = "#VRML V2.0 utf8\n" + squares(pictures, files, pictures);
  bench::Duel duel(state, 1.1);
  for (auto _ : state) {
    duel.rival([&] {
      std::vector<std::unique_ptr<unsigned char[]>> kept;
      for (int i = 0; i < pictures; ++i) {
        int width, height, components;
        unsigned char* bytes;
        if (!VrmlTexture::readImage(files.path(i).c_str(), width, height, components, bytes)) std::abort();
        kept.emplace_back(bytes);
      }
      return kept;
    });
    duel.library([&] {
      tessel::ReadStatus status;
      tessel::SoRef<SoNode> root(VrmlDB::read(world, "bench.wrl", status));
      if (!root) std::abort();
      return root;
    });
  }
}

}  // namespace

BENCHMARK(still)->Args({50, 50})->Args({50, 1})->Args({1000, 1})->UseManualTime()->Unit(
    benchmark::kMillisecond);
BENCHMARK(load)->Arg(500)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);
