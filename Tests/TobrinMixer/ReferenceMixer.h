#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "TobrinMixer.h"

namespace tobrin {

/// The mixer's sound in double precision, one frame after the other: what the real one is judged
/// by.
class ReferenceMixer final {
 public:
  ReferenceMixer(uint32_t fadeFrames, uint32_t releaseFrames)
      : fadeFrames_(fadeFrames), releaseFrames_(releaseFrames) {}

  void push(const TBCommand& command) { commands_.push_back(command); }
  void setMaster(double gain) { masterTarget_ = gain; }
  /// Mono when `right` is null.
  void render(double* left, double* right, uint32_t frames);

  uint32_t activeVoices = 0;
  uint64_t startedVoices = 0;

 private:
  struct Voice {
    bool active = false;
    bool releasing = false;
    uint32_t tag = 0;
    uint64_t sequence = 0;
    std::array<TBSample, TB_LAYERS> layers{};
    std::array<double, TB_LAYERS> gain{}, target{}, step{};
    uint32_t rampLeft = 0;
    uint32_t length = 0;
    double position = 0;
    double rate = 1;
    double panLeft = 1;
    double panRight = 1;
  };

  void apply(const TBCommand& command);
  void start(const TBCommand& command);
  static void ramp(Voice& voice, const float* weights, uint32_t frames);
  static void mix(Voice& voice, double* left, double* right, uint32_t frames);

  std::vector<TBCommand> commands_;
  std::array<Voice, TB_VOICES> voices_;
  uint64_t sequence_ = 0;
  uint32_t fadeFrames_;
  uint32_t releaseFrames_;
  double masterTarget_ = 1;
  double masterCurrent_ = 1;
};

}  // namespace tobrin
