/// Writes sound as it is: a stereo WAV file of 32-bit float samples, untouched. Thread: any.
#pragma once

#include <cstddef>
#include <filesystem>
#include <span>

namespace tobrin {

/// Most frames that a WAV file's 32-bit sizes hold next to its headers.
inline constexpr std::size_t maxFloatWAVFrames = (0xFFFF'FFFFu - 1024) / 8;

/// Both channels are equally long, `sampleRate` in frames a second. The target is replaced
/// atomically; the same samples give the same bytes. Throws `std::runtime_error`.
void writeFloatWAV(std::span<const float> left, std::span<const float> right, int sampleRate,
                   const std::filesystem::path& file);

}  // namespace tobrin
