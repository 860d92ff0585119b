/// Makes sounds louder than in their pack, but not so loud that the mixer's limiter would change
/// them: a quiet key gets the whole boost, a loud one less or none. Decided for each voice when it
/// starts, from the samples that it will play, so that the render thread does no more work. Thread:
/// conductor.
#pragma once

#include <array>
#include <unordered_map>

#include "TobrinMixer.h"

namespace tobrin {

class VoiceBoost final {
 public:
  static constexpr float most = 2;

  /// The largest sample of each layer of a voice, in either channel, at weight 1; 0: not known.
  using Peaks = std::array<float, TB_LAYERS>;

  /// 1 (as in the pack) to `most`, linear; for voices that start from now on.
  void set(float wish);

  /// To be called before samples that were boosted go away.
  void forgetSamples() { loudest_.clear(); }

  /// The peaks of a voice that is about to start.
  [[nodiscard]] Peaks peaks(const TBCommand& start);

  /// Raises the weights of a voice; `volume` is what the mixer multiplies the sum of all voices by.
  void raise(TBCommand& command, const Peaks& peaks, float volume) const;

 private:
  [[nodiscard]] float loudest(const TBSample& sample);

  float wish_ = 1;
  std::unordered_map<const float*, float> loudest_;  // by the first sample
};

}  // namespace tobrin
