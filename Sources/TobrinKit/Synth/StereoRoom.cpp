#include "Synth/StereoRoom.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <utility>

#include "Base/Biquad.h"
#include "Synth/StrikeBuffer.h"

namespace tobrin {
namespace {

constexpr double roomCornerHz = 5000;
constexpr double butterworthQ = 0.7071;
constexpr std::size_t fadeFrames = 192;                  // 4 ms
constexpr double silenceRatio = 0.00031622776601683794;  // -70 dB

struct Reflection {
  double delayMs;
  double gain;
  double left;
  double right;
};

constexpr Reflection reflections[] = {{2.3, 0.22, 0.85, 0.4}, {3.9, 0.18, 0.35, 0.85},
                                      {6.1, 0.12, 0.7, 0.5},  {8.7, 0.09, 0.4, 0.75},
                                      {12.5, 0.06, 0.6, 0.6}, {17.0, 0.04, 0.55, 0.45}};

/// Adds the room's sound, delayed and scaled, to one channel.
void addDelayed(std::vector<double>& channel, const std::vector<double>& room, std::size_t delay,
                double gain) {
  for (std::size_t n = 0; n + delay < channel.size(); ++n)
    channel[n + delay] += gain * room[n];
}

double peakOf(const std::vector<double>& channel) {
  double peak = 0;
  for (const double sample : channel)
    peak = std::max(peak, std::fabs(sample));
  return peak;
}

/// Frames up to and with the last one that reaches the threshold in either channel.
std::size_t audibleFrames(const StereoTake& take, double threshold) {
  std::size_t frames = take.left.size();
  while (frames > 0 && !(std::fabs(take.left[frames - 1]) >= threshold) &&
         !(std::fabs(take.right[frames - 1]) >= threshold))
    --frames;
  return frames;
}

void fadeOut(std::vector<double>& channel) {
  const std::size_t length = channel.size();
  for (std::size_t i = 0; i < std::min(length, fadeFrames); ++i)
    channel[length - 1 - i] *=
        0.5 - 0.5 * std::cos(static_cast<double>(i) * std::numbers::pi / double{fadeFrames});
}

}  // namespace

StereoTake withRoom(std::vector<double> dry, double amount) {
  std::vector<double> room(dry.size());
  Biquad walls = Biquad::lowpass(roomCornerHz, butterworthQ, StrikeBuffer::sampleRate);
  std::transform(dry.begin(), dry.end(), room.begin(),
                 [&](double sample) { return walls.process(sample); });
  StereoTake take{.left = dry, .right = {}};
  take.right = std::move(dry);
  for (const Reflection& reflection : reflections) {
    const std::size_t delay = StrikeBuffer::sampleCount(reflection.delayMs / 1000);
    const double gain = amount * reflection.gain;
    addDelayed(take.left, room, delay, reflection.left * gain);
    addDelayed(take.right, room, delay, reflection.right * gain);
  }
  return take;
}

void trim(StereoTake& take) {
  assert(take.left.size() == take.right.size());
  const double peak = std::max(peakOf(take.left), peakOf(take.right));
  if (!(peak > 0)) return;
  const std::size_t kept =
      std::min(audibleFrames(take, peak * silenceRatio) + fadeFrames, take.left.size());
  take.left.resize(kept);
  take.right.resize(kept);
  fadeOut(take.left);
  fadeOut(take.right);
}

}  // namespace tobrin
