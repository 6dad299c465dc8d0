// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <Inventor/lists/SoBaseList.h>

/// The visibility sensors that a world had in view in its last frame; the list holds references on them.
class VrmlVisibilityList : public SoBaseList {};
