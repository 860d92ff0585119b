/// Converts one sound of one or two channels to another sample rate, at very high quality and
/// without delay. Streaming: feed it in pieces, then finish. The result does not depend on how the
/// input is cut. One thread at a time.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

namespace tobrin {

class Resampler final {
 public:
  /// Takes converted frames; the pointers hold for the call. `right` is null for mono.
  using Sink = std::function<void(const float* left, const float* right, std::size_t frames)>;

  /// Throws `std::runtime_error` with the converter's own text.
  Resampler(double fromRate, double toRate, bool stereo);
  ~Resampler();
  Resampler(const Resampler&) = delete;
  Resampler& operator=(const Resampler&) = delete;

  void process(const float* left, const float* right, std::size_t frames, const Sink& sink);
  /// Hands out what is still on its way. Nothing may follow.
  void finish(const Sink& sink);

 private:
  struct Converter;
  std::unique_ptr<Converter> converter_;
  std::vector<float> left_;   // output of one step
  std::vector<float> right_;  // empty for mono
};

}  // namespace tobrin
