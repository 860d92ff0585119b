/// Synthetic typing for measurements: key-downs and what an accelerometer near the
/// keyboard would say to them. Made by a model, not recorded: each impact is two damped resonances
/// of a chassis on top of gravity, slow sway, resting hands and sensor noise. Seeded, so the same
/// on every run.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

#include "Base/SplitMix64.h"
#include "Force/KeyTrace.h"
#include "Force/MotionTrace.h"

namespace tobrin {

class TypedTrace {
 public:
  MotionTrace motion;  ///< at 1000 Hz
  KeyTrace keys;
  std::vector<double> strengths;  ///< each key's impact in g, as it was meant

  TypedTrace(uint64_t seed, std::size_t keyCount) : random_(seed) {
    double time = 2;
    for (std::size_t i = 0; i < keyCount; ++i) {
      time += 0.08 + 0.25 * random_.unit() * random_.unit();
      strike(time, drawStrength());
    }
    sample(time + 1);
  }

  /// The same movement from a sensor that sends `hz` samples a second, each the mean of what came
  /// since the one before, as a sensor's own filter has it.
  static MotionTrace resampled(const MotionTrace& trace, double hz) {
    MotionTrace result;
    const auto first = static_cast<double>(trace.samples.front().time);
    Acceleration sum;
    double count = 0;
    double due = first + 1e9 / hz;
    for (const MotionTrace::Sample& sample : trace.samples) {
      sum.x += sample.acceleration.x;
      sum.y += sample.acceleration.y;
      sum.z += sample.acceleration.z;
      ++count;
      if (static_cast<double>(sample.time) < due) continue;
      result.samples.push_back({sample.time, {sum.x / count, sum.y / count, sum.z / count}});
      sum = {};
      count = 0;
      due += 1e9 / hz;
    }
    return result;
  }

 private:
  static constexpr double rate = 8000;  ///< of the model, before the sensor's filter
  static constexpr std::size_t perSample = 8;

  struct Burst {
    double start = 0;  // s
    double g = 0;
    std::array<double, 2> hz{};
    std::array<double, 2> decay{};  // s
    std::array<double, 3> direction{};

    [[nodiscard]] double at(double time) const {
      constexpr double rise = 0.0007;  // s
      constexpr double overtone = 0.4;
      const double t = time - start;
      const auto ring = [&](std::size_t i) {
        return std::exp(-t / decay[i]) * std::sin(2 * std::numbers::pi * hz[i] * t);
      };
      return g * (1 - std::exp(-t / rise)) * (ring(0) + overtone * ring(1));
    }
  };

  double normal() {
    const double u = 1 - random_.unit();
    return std::sqrt(-2 * std::log(u)) * std::cos(2 * std::numbers::pi * random_.unit());
  }
  double between(double low, double high) { return low + (high - low) * random_.unit(); }

  /// Mostly ordinary strokes, some feather-light, some slammed.
  double drawStrength() {
    const double kind = random_.unit();
    const double factor = kind < 0.08 ? 0.35 : kind > 0.92 ? 3.5 : 1;
    return 0.022 * factor * std::exp(0.4 * normal());
  }

  void strike(double time, double g) {
    // The finger lands about when the switch closes, and the report of the key takes a little.
    const double impact = time + std::clamp(-0.002 + 0.003 * normal(), -0.01, 0.008);
    addBurst(impact, g);
    addBurst(time + between(0.06, 0.11), 0.2 * g);  // the key comes up
    keys.keys.push_back({static_cast<uint64_t>(time * 1e9), 0});
    strengths.push_back(g);
  }

  void addBurst(double start, double g) {
    bursts_.push_back({start,
                       g,
                       {between(70, 130), between(200, 380)},
                       {between(0.006, 0.010), between(0.003, 0.005)},
                       {0.2 * random_.signedUnit(), 0.2 * random_.signedUnit(), 1}});
  }

  void sample(double seconds) {
    std::sort(bursts_.begin(), bursts_.end(),
              [](const Burst& a, const Burst& b) { return a.start < b.start; });
    const auto count = static_cast<std::size_t>(seconds * rate) / perSample;
    for (std::size_t i = 0; i < count; ++i) {
      std::array<double, 3> sum{};
      for (std::size_t k = 1; k <= perSample; ++k)
        add(sum, static_cast<double>(i * perSample + k) / rate);
      constexpr double noise = 0.0006;  // g a sample and axis
      for (double& axis : sum)
        axis = axis / perSample + noise * normal();
      motion.samples.push_back({(i + 1) * 1'000'000, {sum[0], sum[1], sum[2] + 1}});
    }
  }

  void add(std::array<double, 3>& sum, double time) {
    constexpr double longest = 0.1;  // s; a burst is over by then
    sum[0] += 0.01 * std::sin(2 * std::numbers::pi * 0.2 * time);
    sum[1] += 0.001 * std::sin(2 * std::numbers::pi * 9 * time);
    while (first_ < bursts_.size() && bursts_[first_].start + longest < time)
      ++first_;
    for (std::size_t b = first_; b < bursts_.size() && bursts_[b].start < time; ++b)
      for (std::size_t axis = 0; axis < sum.size(); ++axis)
        sum[axis] += bursts_[b].direction[axis] * bursts_[b].at(time);
  }

  SplitMix64 random_;
  std::vector<Burst> bursts_;
  std::size_t first_ = 0;
};

}  // namespace tobrin
