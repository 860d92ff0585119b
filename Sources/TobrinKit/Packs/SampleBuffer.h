/// One decoded sound: non-interleaved 32-bit float at the engine rate, at a fixed address for its
/// life, so that the mixer reads it through raw pointers. Never changes after construction.
/// Thread: any.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>

#include "TobrinMixer.h"

namespace tobrin {

class SampleBuffer final {
 public:
  /// Copies the samples. An empty `right` makes a mono sound; a `right` of another length than
  /// `left` is a broken promise of the caller and ends the process. `sampleRate` in frames a
  /// second.
  SampleBuffer(std::span<const float> left, std::span<const float> right, double sampleRate);
  SampleBuffer(const SampleBuffer&) = delete;
  SampleBuffer& operator=(const SampleBuffer&) = delete;

  /// Channel blocks of `frames` samples, with room for at least one; a null `right` makes it mono.
  struct Blocks {
    std::unique_ptr<float[]> left;
    std::unique_ptr<float[]> right;
    std::size_t frames = 0;
  };

  /// Takes the blocks over without a copy.
  SampleBuffer(Blocks blocks, double sampleRate);

  /// Decodes a whole audio file and converts it to `sampleRate`; channels beyond the second are
  /// dropped. Samples that are not finite, or subnormal, become 0. A file that would need more than
  /// `maxBytes` of decoded audio (8 bytes a frame at `sampleRate`) is refused before that memory is
  /// taken, also where its header understates its length. Throws `PackError` (decode).
  static std::unique_ptr<SampleBuffer> load(const std::filesystem::path& file, double sampleRate,
                                            uint64_t maxBytes = UINT64_MAX);

  [[nodiscard]] const float* left() const { return left_.get(); }
  /// The same pointer as `left()` for a mono sound.
  [[nodiscard]] const float* right() const { return right_ ? right_.get() : left_.get(); }
  [[nodiscard]] bool isMono() const { return right_ == nullptr; }
  [[nodiscard]] std::size_t frames() const { return frames_; }
  [[nodiscard]] double sampleRate() const { return sampleRate_; }
  [[nodiscard]] double duration() const {
    return static_cast<double>(frames_) / sampleRate_;
  }  ///< s
  /// Largest absolute sample of both channels; 0 for an empty sound.
  [[nodiscard]] float peak() const;
  /// The view the mixer takes; the frame count must fit 32 bits (else the process ends).
  [[nodiscard]] TBSample sample() const;

 private:
  std::unique_ptr<float[]> left_;   // at least one sample, even when frames_ is 0
  std::unique_ptr<float[]> right_;  // null for mono
  std::size_t frames_;
  double sampleRate_;
};

}  // namespace tobrin
