// SPDX-License-Identifier: BSD-3-Clause
#include <tessel/version.h>

#include <cstdio>

int main() {
  std::puts(tessel::version());
}
