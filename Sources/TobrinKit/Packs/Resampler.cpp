#include "Packs/Resampler.h"

#include <soxr.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <numeric>
#include <stdexcept>

namespace tobrin {
namespace {

constexpr std::size_t stepFrames = 4096;
constexpr std::size_t silentFrames = 1024;
constexpr std::array<float, silentFrames> silence{};
/// A converter's very first frames come out a little different from any later ones.
constexpr std::size_t leadFrames = 256;
/// Sounds that begin further apart gain nothing by sharing a converter.
constexpr uint64_t longestPeriod = 2048;
/// The converter's arithmetic errs by a part of the loudest sample nearby, so a sound far beyond
/// full scale may not come near another.
constexpr float loudestToGoOn = 16;

void check(soxr_error_t error) {
  if (error != nullptr) throw std::runtime_error(error);
}

float loudestOf(const float* samples, std::size_t frames, float loudest) {
  for (std::size_t i = 0; samples != nullptr && i < frames; ++i)
    loudest = std::max(loudest, std::fabs(samples[i]));
  return loudest;
}

}  // namespace

struct Resampler::Converter {
  Converter(double fromRate, double toRate, bool stereo) {
    const auto formats = soxr_io_spec(SOXR_FLOAT32_S, SOXR_FLOAT32_S);
    const auto quality = soxr_quality_spec(SOXR_VHQ, 0);
    soxr_error_t error = nullptr;
    handle = soxr_create(fromRate, toRate, stereo ? 2 : 1, &error, &formats, &quality, nullptr);
    check(error);
  }
  ~Converter() { soxr_delete(handle); }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  soxr_t handle = nullptr;
};

Resampler::Resampler(double fromRate, double toRate, bool stereo)
    : converter_(std::make_unique<Converter>(fromRate, toRate, stereo)),
      fromRate_(fromRate),
      toRate_(toRate),
      left_(stepFrames),
      right_(stereo ? stepFrames : 0) {
  assert(fromRate > 0 && toRate > 0);
  const auto from = static_cast<uint64_t>(fromRate);
  const auto to = static_cast<uint64_t>(toRate);
  const uint64_t common = std::gcd(from, to);
  const bool whole = static_cast<double>(from) == fromRate && static_cast<double>(to) == toRate;
  if (whole && from / common <= longestPeriod) {
    period_ = from / common;
    periodOut_ = to / common;
    feedSilence(leadFrames, {});
  }
  beginSound();
}

Resampler::~Resampler() = default;

bool Resampler::mayGoOn() const {
  return period_ > 0 && loudest_ <= loudestToGoOn;
}

void Resampler::process(const float* left, const float* right, std::size_t frames,
                        const Sink& sink) {
  assert(right_.empty() == (right == nullptr));
  loudest_ = loudestOf(right, frames, loudestOf(left, frames, loudest_));
  soundFrames_ += frames;
  feed(left, right, frames, sink);
}

// The sound is as long as it was, to the nearest frame. The silence that pushes its end out is at
// least as long as what the filter looks ahead, so none of its ringing reaches the next sound.
void Resampler::finish(const Sink& sink) {
  const double frames = static_cast<double>(soundFrames_) * toRate_ / fromRate_;
  end_ = begin_ + static_cast<uint64_t>(std::floor(frames + 0.5));
  while (made_ < end_)
    feedSilence(silentFrames, sink);
  if (mayGoOn()) beginSound();
}

void Resampler::beginSound() {
  end_ = made_;  // what comes out until `begin_` belongs to no sound
  if (period_ > 0) {
    feedSilence((period_ - fed_ % period_) % period_, {});
    begin_ = fed_ / period_ * periodOut_;
  }
  end_ = UINT64_MAX;
  soundFrames_ = 0;
}

void Resampler::feedSilence(std::size_t frames, const Sink& sink) {
  for (std::size_t left = frames; left > 0;) {
    const std::size_t step = std::min(left, silentFrames);
    feed(silence.data(), right_.empty() ? nullptr : silence.data(), step, sink);
    left -= step;
  }
}

void Resampler::feed(const float* left, const float* right, std::size_t frames, const Sink& sink) {
  float* output[] = {left_.data(), right_.data()};
  for (std::size_t used = 0, made = 0; used < frames || made == stepFrames;) {
    const float* const input[] = {left + used, right == nullptr ? right : right + used};
    std::size_t taken = 0;
    check(
        soxr_process(converter_->handle, input, frames - used, &taken, output, stepFrames, &made));
    used += taken;
    handOut(made, sink);
    if (taken == 0 && made == 0) break;
  }
  fed_ += frames;
}

// Of the frames just made, those that belong to the sound.
void Resampler::handOut(std::size_t made, const Sink& sink) {
  const uint64_t from = std::max(made_, begin_);
  const uint64_t to = std::min(made_ + made, end_);
  if (from < to) {
    const auto skipped = static_cast<std::size_t>(from - made_);
    sink(left_.data() + skipped, right_.empty() ? nullptr : right_.data() + skipped,
         static_cast<std::size_t>(to - from));
  }
  made_ += made;
}

}  // namespace tobrin
