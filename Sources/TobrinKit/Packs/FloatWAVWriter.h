/// Writes sound as it is: a stereo WAV file of 32-bit float samples, untouched. Thread: any.
#pragma once

#include <filesystem>
#include <span>

namespace tobrin {

struct FloatWAVWriter {
  /// Most frames that a WAV file's 32-bit sizes hold beside its headers.
  static constexpr std::size_t maxFrames = (0xFFFF'FFFFu - 1024) / 8;

  /// Both channels are equally long, `sampleRate` in frames a second. The target is replaced
  /// atomically; the same samples give the same bytes. Throws `std::runtime_error`.
  static void write(std::span<const float> left, std::span<const float> right, int sampleRate,
                    const std::filesystem::path& file);
};

}  // namespace tobrin
