// SPDX-License-Identifier: BSD-3-Clause
#pragma once

/// Marks what hosts may link against; everything else stays hidden in the library.
#define TESSEL_API __attribute__((visibility("default")))
