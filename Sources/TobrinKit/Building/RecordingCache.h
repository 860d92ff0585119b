/// Recordings of recipes as files of one folder: fetched, converted and kept there. Thread: any.
#pragma once

#include <filesystem>
#include <memory>
#include <span>

#include "Building/PackRecipe.h"
#include "Building/ProcessRunner.h"
#include "Packs/SampleBuffer.h"

namespace tobrin {

/// The converted recording in the cache, fetched and converted if it is not there yet. What cannot
/// be converted does not stay there. Throws `DownloadError`, `PackError`, or the file system's own
/// error.
std::filesystem::path fetchRecording(const PackRecipe::Source& source,
                                     const std::filesystem::path& cache,
                                     const ProcessRunner& programs);

/// One whole recording, decoded at `recordedPackRate`. Throws as `fetchRecording` does.
std::unique_ptr<SampleBuffer> loadRecording(const PackRecipe::Source& source,
                                            const std::filesystem::path& cache,
                                            const ProcessRunner& programs);

/// Both channels of a part of a recording, which outlives it.
struct RecordingPart {
  std::span<const float> left;
  std::span<const float> right;
};

/// The part of a decoded recording from its source's `start` to its `end`. Throws `RecipeError`
/// where the recording is shorter than `start`.
[[nodiscard]] RecordingPart partOf(const SampleBuffer& recording, const PackRecipe::Source& source);

}  // namespace tobrin
