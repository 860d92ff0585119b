/// Brings recordings of every format that ffmpeg reads into the one that packs are built from.
/// Thread: any.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include "Building/ProcessRunner.h"

namespace tobrin {

enum class Conversion : uint8_t {
  done,
  failed,      ///< the recording cannot be read
  noConverter  ///< ffmpeg is not installed
};

/// Writes `recording` to `wav` as a float WAV file at 48 kHz, or only its first `mostSeconds`;
/// after a failure the file may be incomplete. Throws `std::system_error` where no program can be
/// started.
[[nodiscard]] Conversion convertRecording(const std::filesystem::path& recording,
                                          const std::filesystem::path& wav,
                                          const ProcessRunner& programs,
                                          std::optional<int> mostSeconds = {});

/// What the user is told after a failure.
inline constexpr const char* conversionFailed = "ffmpeg failed (is ffmpeg installed?)";

}  // namespace tobrin
