#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "TobrinMixer.h"

namespace tobrin {

/// The mixer as a plain loop over frames, which the compiler alone makes fast: what the vector
/// kernels are measured against. Stereo only, no ring.
class ScalarMixer final {
 public:
  void start(const TBCommand& command);
  void setWeights(uint32_t tag, std::span<const float, TB_LAYERS> weights);
  void render(float* left, float* right, uint32_t frames);

 private:
  struct Voice {
    bool active = false;
    uint32_t tag = 0;
    std::array<TBSample, TB_LAYERS> layers{};
    std::array<float, TB_LAYERS> gain{}, target{}, step{};
    uint32_t rampLeft = 0;
    uint32_t length = 0;
    double position = 0;
    double rate = 1;
    float panLeft = 1;
    float panRight = 1;
  };

  static void mixVoice(Voice& voice, float* left, float* right, uint32_t frames);
  static void advanceRamp(Voice& voice);

  std::array<Voice, TB_VOICES> voices_;
};

}  // namespace tobrin
