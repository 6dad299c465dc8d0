// SPDX-License-Identifier: BSD-3-Clause
#include "shapes/UcsText.h"

#include <iconv.h>

#include <Inventor/fields/SoMFString.h>

namespace tessel {
namespace {

/// A converter of the system, opened once.
class Converter {
public:
  Converter() : descriptor(iconv_open("UCS-2", "UTF-8")) {}
  ~Converter() {
    if (isOpen()) iconv_close(descriptor);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  /// False, with `to` empty, if it is not converted to its end.
  bool convert(const SbString& from, std::u16string& to) {
    if (!isOpen()) return false;
    iconv(descriptor, nullptr, nullptr, nullptr, nullptr);
    auto inLeft = static_cast<std::size_t>(from.getLength());
    to.resize(inLeft);  // no character takes less than a byte
    char* in = const_cast<char*>(from.getString());
    char* out = reinterpret_cast<char*>(to.data());
    std::size_t outLeft = to.size() * sizeof(char16_t);
    iconv(descriptor, &in, &inLeft, &out, &outLeft);
    to.resize(inLeft > 0 ? 0 : to.size() - outLeft / sizeof(char16_t));
    return inLeft == 0;
  }

private:
  bool isOpen() const { return descriptor != reinterpret_cast<iconv_t>(-1); }

  iconv_t descriptor;
};

}  // namespace

std::vector<std::u16string> convertToUCS(const SoMFString& strings) {
  static Converter converter;
  const auto count = static_cast<std::size_t>(strings.getNum());
  std::vector<std::u16string> result(count);
  for (std::size_t i = 0; i < count; ++i)
    if (!converter.convert(strings[static_cast<int>(i)], result[i])) break;
  return result;
}

}  // namespace tessel
