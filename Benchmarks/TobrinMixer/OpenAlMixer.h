#pragma once

#include <memory>
#include <span>

#include "TobrinMixer.h"

namespace tobrin {

/// The same voices played by OpenAL Soft into memory: one source a layer, linear resampling,
/// channels passed straight through, each sound looped.
class OpenAlMixer final {
 public:
  /// Throws std::runtime_error where OpenAL lacks something this needs.
  explicit OpenAlMixer(std::span<const TBCommand> voices);
  ~OpenAlMixer();
  OpenAlMixer(const OpenAlMixer&) = delete;
  OpenAlMixer& operator=(const OpenAlMixer&) = delete;

  /// Renders interleaved stereo.
  void render(float* samples, uint32_t frames);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace tobrin
