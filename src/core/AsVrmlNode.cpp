// SPDX-License-Identifier: BSD-3-Clause
#include "core/AsVrmlNode.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tessel {

bool isVrmlNodeClass(SoType type) {
  enum class Answer : std::uint8_t { unknown, no, yes };
  static std::vector<Answer> known;
  const auto key = static_cast<std::size_t>(type.getKey());
  if (key >= known.size()) known.resize(key + 1);
  Answer& answer = known[key];
  if (answer == Answer::unknown)
    answer = type.isDerivedFrom(VrmlNode::getClassTypeId()) ? Answer::yes : Answer::no;
  return answer == Answer::yes;
}

}  // namespace tessel
