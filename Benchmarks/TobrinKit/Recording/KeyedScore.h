/// How well sounds were given to keys, by the truth about a composed recording.
#pragma once

#include <cstddef>

#include "ComposedKeys.h"
#include "Recording/KeyedTakes.h"

namespace tobrin {

struct KeyedScore {
  double presses = 0;       ///< share of separable presses whose sound was found
  double releases = 0;      ///< the same of releases
  std::size_t wrong = 0;    ///< sounds that were given to another key than theirs
  double onsetErrorMs = 0;  ///< of separable sounds that were found; 95 of 100 have less
  std::size_t good = 0;     ///< sounds that may be cut
  std::size_t spoiled = 0;  ///< of these, those with a knock in them, and keys without a sound
};

[[nodiscard]] KeyedScore scoreOf(const ComposedKeys& composed, const KeyedTakes& takes);

}  // namespace tobrin
