// SPDX-License-Identifier: BSD-3-Clause
// Gives a fuzz target the files named on the command line, folders file by file, where libFuzzer is not there.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" [[gnu::weak]] int LLVMFuzzerInitialize(int* argc, char*** argv);

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> filesBelow(const fs::path& path) {
  if (!fs::is_directory(path)) return {path};
  std::vector<fs::path> files;
  for (const auto& entry : fs::recursive_directory_iterator(path))
    if (entry.is_regular_file()) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

bool replay(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  std::vector<char> bytes(std::istreambuf_iterator<char>(in), {});
  std::fprintf(stderr, "replaying %s (%zu bytes)\n", path.c_str(), bytes.size());
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (LLVMFuzzerInitialize) LLVMFuzzerInitialize(&argc, &argv);
  std::size_t replayed = 0;
  for (int i = 1; i < argc; ++i)
    for (const auto& file : filesBelow(argv[i])) {
      if (!replay(file)) {
        std::fprintf(stderr, "cannot read %s\n", file.c_str());
        return 1;
      }
      ++replayed;
    }
  std::fprintf(stderr, "%zu files replayed\n", replayed);
  return replayed > 0 ? 0 : 1;
}
