// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/version.h>

const char* tessel::version() noexcept { return TESSEL_VERSION; }
