#include "Recording/ChannelChoice.h"

#include <algorithm>
#include <utility>

namespace tobrin {

namespace {

constexpr double window = 0.01;    // s
constexpr double clearly = 1.25;   // times the contrast of the left channel
constexpr float silence = 1e-12F;  // energy below that of any converter's noise

}  // namespace

ChannelChoice::ChannelChoice(double rate)
    : windowFrames_(std::max<std::size_t>(1, static_cast<std::size_t>(window * rate))) {}

void ChannelChoice::add(std::span<const float> interleaved) {
  for (std::size_t index = 0; index + 1 < interleaved.size(); index += 2) {
    for (std::size_t channel = 0; channel < 2; ++channel) {
      const float sample = interleaved[index + channel];
      // The difference weighs down hum and speech: keys click.
      const float step = sample - std::exchange(last_[channel], sample);
      sum_[channel] += step * step;
    }
    if (++frames_ < windowFrames_) continue;
    frames_ = 0;
    for (std::size_t channel = 0; channel < 2; ++channel)
      energies_[channel].push_back(std::exchange(sum_[channel], 0.0F));
  }
}

std::size_t ChannelChoice::better() const {
  return contrast(energies_[1]) > clearly * contrast(energies_[0]) ? 1 : 0;
}

double ChannelChoice::contrast(std::vector<float> energies) {
  if (energies.empty()) return 0;
  std::sort(energies.begin(), energies.end());
  const float loud = energies[energies.size() * 98 / 100];
  if (loud <= silence) return 0;
  return static_cast<double>(loud / std::max(energies[energies.size() / 2], silence));
}

}  // namespace tobrin
