/// Turns a recipe into a finished pack: fetches and converts its recordings, slices them, writes
/// takes and manifest, and levels the pack by the loudness of a typing demo. Thread: any; the log
/// callback comes on the calling thread.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>

#include "Building/PackFolder.h"
#include "Building/PackRecipe.h"
#include "Building/ProcessRunner.h"
#include "Packs/SampleBuffer.h"

namespace tobrin {

struct RecordedPackBuilder {
  static constexpr double rate = 48000;            ///< of conversion, slicing and writing
  static constexpr double targetLoudness = -28.0;  ///< of the typing demo, LUFS

  /// Receives one line of text without its end.
  using Log = std::function<void(const std::string& line)>;

  /// Builds the pack into the folder `into`, which is replaced whole once the new pack is complete;
  /// a failure or an interruption leaves it as it was. Converted recordings stay in `cache`.
  /// Throws `RecipeError`, `DownloadError`, `PackError`, or the file system's own error; what is
  /// wrong with `recipe` and `into` is found before anything is fetched.
  static void build(const PackRecipe& recipe, const std::filesystem::path& cache,
                    const std::filesystem::path& into, const Log& log,
                    const ProcessRunner& programs, const FolderExchange& exchange = {});

  /// The converted recording in the cache, fetched and converted if it is not there yet. What
  /// cannot be converted does not stay there.
  static std::filesystem::path fetch(const PackRecipe::Source& source,
                                     const std::filesystem::path& cache,
                                     const ProcessRunner& programs);

  /// Both channels of a part of a recording, which outlives it.
  struct Part {
    std::span<const float> left;
    std::span<const float> right;
  };

  /// The part of a decoded recording that its source names by `start` and `end`. Throws
  /// `RecipeError` where the recording is over by then.
  static Part part(const SampleBuffer& recording, const PackRecipe::Source& source);

  /// One whole recording, decoded at `rate`.
  static std::unique_ptr<SampleBuffer> load(const PackRecipe::Source& source,
                                            const std::filesystem::path& cache,
                                            const ProcessRunner& programs);
};

}  // namespace tobrin
