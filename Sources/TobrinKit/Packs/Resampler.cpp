#include "Packs/Resampler.h"

#include <soxr.h>

#include <stdexcept>

namespace tobrin {
namespace {

constexpr std::size_t stepFrames = 4096;

void check(soxr_error_t error) {
  if (error != nullptr) throw std::runtime_error(error);
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
      left_(stepFrames),
      right_(stereo ? stepFrames : 0) {}

Resampler::~Resampler() = default;

void Resampler::process(const float* left, const float* right, std::size_t frames,
                        const Sink& sink) {
  const float* const none = nullptr;
  float* output[] = {left_.data(), right_.data()};
  for (std::size_t used = 0, made = 0; used < frames || made == stepFrames;) {
    const float* const input[] = {left + used, right == nullptr ? none : right + used};
    std::size_t taken = 0;
    check(
        soxr_process(converter_->handle, input, frames - used, &taken, output, stepFrames, &made));
    used += taken;
    if (made > 0) sink(left_.data(), right_.empty() ? none : right_.data(), made);
    if (taken == 0 && made == 0) break;
  }
}

void Resampler::finish(const Sink& sink) {
  float* output[] = {left_.data(), right_.data()};
  for (;;) {
    std::size_t made = 0;
    check(soxr_process(converter_->handle, nullptr, 0, nullptr, output, stepFrames, &made));
    if (made == 0) return;
    sink(left_.data(), right_.empty() ? nullptr : right_.data(), made);
  }
}

}  // namespace tobrin
