/// Makes sounds louder than their pack has them, as far as the mixer's limiter lets them pass
/// unharmed: a quiet key grows by all that is wished, a loud one by less or not at all. Decided for
/// each voice when it starts, from the samples that it will play, so that it costs neither time nor
/// anything on the render thread. Thread: conductor.
#pragma once

#include <array>
#include <unordered_map>

#include "TobrinMixer.h"

namespace tobrin {

class VoiceBoost final {
 public:
  static constexpr float most = 2;

  /// The loudest that each layer of a voice gets on either side at weight 1; 0: not known.
  using Peaks = std::array<float, TB_LAYERS>;

  /// 1 (as the pack has it) to `most`, linear; for voices that start from now on.
  void set(float wish);

  /// To be called before samples that were boosted go away.
  void forgetSamples() { loudest_.clear(); }

  /// Those of a voice that is about to start.
  [[nodiscard]] Peaks peaks(const TBCommand& start);

  /// Raises the weights of a voice; `volume` is what the mixer multiplies the sum of all voices by.
  void raise(TBCommand& command, const Peaks& peaks, float volume) const;

 private:
  [[nodiscard]] float loudest(const TBSample& sample);

  float wish_ = 1;
  std::unordered_map<const float*, float> loudest_;  // by the first sample
};

}  // namespace tobrin
