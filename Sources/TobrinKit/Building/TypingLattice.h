/// All likely readings of the hits of a recording at once: which hits are presses, and which of
/// them each release belongs to.
#pragma once

#include <vector>

#include "Building/TypingModel.h"

namespace tobrin {

/// The forward-backward algorithm (Baum et al. 1970) over the states "these keys are held, that one
/// was pressed last", of which only the likeliest few are followed after each hit (beam search).
struct TypingLattice {
  struct Reading {
    std::vector<double> pressChance;     ///< of each hit, 0 to 1
    TypingModel::Assignment assignment;  ///< what each hit most likely is
    double logLikelihood = 0;            ///< of all hits together
  };

  /// Times ascend.
  static Reading read(const TypingModel& model, const std::vector<TypedHit>& hits);
};

}  // namespace tobrin
