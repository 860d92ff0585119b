/// Writes float audio as 16-bit PCM WAV files with triangular dither. The same samples always give
/// the same bytes. Thread: any.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace tobrin {

/// The bytes of a whole file: mono where `right` is absent, else stereo. The length of `left` is
/// the frame count; `right` must be at least as long. `sampleRate` in frames a second. NaN and
/// samples at or above 1 become 32767, those at or below -1 become -32767. A rate, or a length,
/// that the header's 32-bit fields cannot hold is a broken promise of the caller and ends the
/// process.
std::string encodeWAV(std::span<const float> left, std::optional<std::span<const float>> right,
                      int64_t sampleRate);

/// Encodes into a file, which is replaced atomically. Throws `std::filesystem::filesystem_error`.
void writeWAV(std::span<const float> left, std::optional<std::span<const float>> right,
              int64_t sampleRate, const std::filesystem::path& file);

}  // namespace tobrin
