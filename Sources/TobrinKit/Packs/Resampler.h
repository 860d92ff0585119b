/// Converts sounds of one or two channels to another sample rate, at very high quality and without
/// delay. Streaming: feed a sound in pieces, then finish. The result does not depend on how the
/// input is cut.
///
/// Setting up a converter takes as long as converting thousands of frames, so one may be used for
/// the next sound too: silence in between keeps them apart. A sound comes out as it would alone,
/// except that one sample in many millions may round the other way. One thread at a time. Thread:
/// any.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace tobrin {

class Resampler final {
 public:
  /// Takes converted frames; the pointers hold for the call. `right` is null for mono.
  using Sink = std::function<void(const float* left, const float* right, std::size_t frames)>;

  /// Rates in frames a second. Throws `std::runtime_error` with the converter's own text.
  Resampler(double fromRate, double toRate, bool stereo);
  ~Resampler();
  Resampler(const Resampler&) = delete;
  Resampler& operator=(const Resampler&) = delete;

  void process(const float* left, const float* right, std::size_t frames, const Sink& sink);
  /// Hands out what is still on its way. Another sound may follow where `mayGoOn()`.
  void finish(const Sink& sink);

  [[nodiscard]] bool converts(double fromRate, bool stereo) const {
    return fromRate == fromRate_ && stereo != right_.empty();
  }
  [[nodiscard]] bool mayGoOn() const;

 private:
  struct Converter;

  void beginSound();
  void feed(const float* left, const float* right, std::size_t frames, const Sink& sink);
  void feedSilence(std::size_t frames, const Sink& sink);
  void handOut(std::size_t made, const Sink& sink);

  std::unique_ptr<Converter> converter_;
  double fromRate_;
  double toRate_;
  uint64_t period_ = 0;       // fewest input frames that make whole output frames; 0: too many
  uint64_t periodOut_ = 0;    // those output frames
  float loudest_ = 0;         // of all input
  uint64_t soundFrames_ = 0;  // input of this sound
  uint64_t fed_ = 0;          // input since the converter was set up
  uint64_t made_ = 0;         // output since then
  uint64_t begin_ = 0;        // output frame at which this sound begins
  uint64_t end_ = 0;          // and ends, once that is known
  std::vector<float> left_;   // output of one step
  std::vector<float> right_;  // empty for mono
};

}  // namespace tobrin
