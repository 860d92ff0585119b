#include "Packs/SampleBuffer.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "Base/PackError.h"
#include "Packs/AudioDecoder.h"

namespace tobrin {
namespace {

/// A broken promise of the caller that would corrupt memory later on.
void demand(bool holds, const char* promise) {
  if (holds) return;
  (void)std::fprintf(stderr, "Tobrin: broken promise: %s\n", promise);
  std::abort();
}

std::unique_ptr<float[]> copyOf(std::span<const float> samples) {
  auto block = std::make_unique_for_overwrite<float[]>(std::max<std::size_t>(samples.size(), 1));
  std::copy(samples.begin(), samples.end(), block.get());
  return block;
}

float peakOf(const float* samples, std::size_t frames) {
  float peak = 0;
  for (std::size_t i = 0; i < frames; ++i)
    peak = std::max(peak, std::fabs(samples[i]));
  return peak;
}

}  // namespace

SampleBuffer::SampleBuffer(std::span<const float> left, std::span<const float> right,
                           double sampleRate)
    : frames_(left.size()), sampleRate_(sampleRate) {
  demand(right.empty() || right.size() == left.size(), "both channels are equally long");
  left_ = copyOf(left);
  if (!right.empty()) right_ = copyOf(right);
}

SampleBuffer::SampleBuffer(Blocks blocks, double sampleRate)
    : left_(std::move(blocks.left)),
      right_(std::move(blocks.right)),
      frames_(blocks.frames),
      sampleRate_(sampleRate) {
  demand(left_ != nullptr, "a sound has a left channel");
}

std::unique_ptr<SampleBuffer> SampleBuffer::load(const std::filesystem::path& file,
                                                 double sampleRate, uint64_t maxBytes) {
  FrameAllowance allowance(maxBytes / bytesPerFrame);
  try {
    return AudioDecoder(sampleRate).decode(file, allowance);
  } catch (const AllowanceExceeded&) {
    throw PackError::decode(file, "the sound is too long");
  }
}

float SampleBuffer::peak() const {
  return std::max(peakOf(left(), frames_), isMono() ? 0.0f : peakOf(right(), frames_));
}

TBSample SampleBuffer::sample() const {
  demand(frames_ <= UINT32_MAX, "a take's frames fit 32 bits");
  return {left(), right(), static_cast<uint32_t>(frames_)};
}

}  // namespace tobrin
