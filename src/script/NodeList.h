// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <span>
#include <vector>

#include <Inventor/nodes/SoNode.h>

#include <tessel/toolkit/SoRef.h>

class SoField;

namespace tessel::script::NodeList {

/// The nodes in a toolkit field of several: a list, or the children of a group. One that stands for none is null.
int count(const SoField& field);
SoNode* at(const SoField& field, int i);
std::vector<SoRef<SoNode>> values(const SoField& field);

/// Writes some from a place on, the last one of all or behind, and tells it as one event.
void set(SoField& field, int first, std::span<const SoRef<SoNode>> nodes);
/// Leaves the first ones.
void truncate(SoField& field, int count);

}  // namespace tessel::script::NodeList
