/// Runs a recorded motion trace and the key-downs recorded with it through the engine's own sensor,
/// classifier and conductor, in virtual time: what the engine would have made of each key. Thread:
/// any.
#pragma once

#include <vector>

#include "Engine/ForceStage.h"
#include "Force/KeyTrace.h"
#include "Force/MotionTrace.h"

namespace tobrin {

struct ReplayedStage {
  std::size_t key = 0;  ///< index in the list of keys
  ForceStage stage;
};

/// All stages in order of time. The same input gives the same stages. `sensitivity` is the user's
/// setting. Returns when all is done.
[[nodiscard]] std::vector<ReplayedStage> replayForce(const MotionTrace& motion,
                                                     const KeyTrace& keys, float sensitivity);

}  // namespace tobrin
