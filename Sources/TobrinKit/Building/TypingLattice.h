/// All likely readings of the hits of a recording at once: which hits are presses, and which of
/// them each release belongs to. Thread: any.
#pragma once

#include <vector>

#include "Building/TypingModel.h"

namespace tobrin {

struct TypingReading {
  std::vector<double> pressChance;     ///< of each hit, 0 to 1
  TypingModel::Assignment assignment;  ///< what each hit most likely is
  double logLikelihood = 0;            ///< of all hits together
};

/// The forward-backward algorithm (Baum et al. 1970) over the states "these keys are held, that one
/// was pressed last", of which only the most likely few are followed after each hit (beam search).
/// The times of `hits` ascend.
[[nodiscard]] TypingReading readTyping(const TypingModel& model, const std::vector<TypedHit>& hits);

}  // namespace tobrin
