/// What the conductor made of the sensor at one stage of a key-down, for tools that look into it.
/// Thread: any.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "Force/ForceRing.h"

namespace tobrin {

struct ForceStage {
  uint16_t code = 0;
  uint64_t keyTime = 0;               ///< host ticks
  double delayMs = 0;                 ///< after the key-down; 0 for the provisional one
  std::optional<ForceWindow> window;  ///< nothing where the sensor had no sample
  float noise = 0;                    ///< the sensor's floor, g
  bool counted = false;               ///< the window's peak is taken for the key's impact
  float relative = 1;                 ///< strength of the stroke; 1 where not counted
  float position = 0;                 ///< its tier position; the typical one where not counted
  float referenceAfter = 0;           ///< the classifier's typical peak after this stage, g
  float typicalAfter = 0;             ///< the typical position after this stage
};

/// Called on the conductor's queue.
using ForceStageCallback = std::function<void(const ForceStage&)>;

}  // namespace tobrin
