// SPDX-License-Identifier: BSD-3-Clause
#pragma once

class SoField;

namespace tessel {

/// How many routes an event may take one behind the other is about twice this. The toolkit calls itself from route to
/// route: a longer chain overflows the stack.
constexpr int highestRouteLevel = 5000;

/// Makes room for a route: finds levels from -highestRouteLevel to highestRouteLevel for the nodes, such that each
/// route leads upwards, but for those that close a loop, in which the toolkit itself ends. The work is constant for
/// routes that come in the order of a chain, forwards or backwards, and bounded for all others. What is too much work
/// passes: a chain that overflowed the stack after all is ended by `VrmlNode::notify`.
/// @return false if that is not possible: the chain would be too long
bool admitRoute(const SoField& from, const SoField& to);

}  // namespace tessel
