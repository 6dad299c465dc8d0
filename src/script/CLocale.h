// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <locale.h>

namespace tessel::script {

/// While it lives, numbers are read and printed on this thread with a point, whatever language the host speaks.
class CLocale {
public:
  CLocale() : before(uselocale(plain())) {}
  ~CLocale() { uselocale(before); }
  CLocale(const CLocale&) = delete;
  CLocale& operator=(const CLocale&) = delete;

private:
  static locale_t plain() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
  }

  locale_t before;
};

}  // namespace tessel::script
