/// Turns a recipe into a finished pack: fetches and converts its recordings, slices them, writes
/// takes and manifest, and levels the pack by the loudness of a typing demo. Thread: any.
#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "Building/PackFolder.h"
#include "Building/PackRecipe.h"
#include "Building/ProcessRunner.h"
#include "Building/TakeWriter.h"

namespace tobrin {

/// Receives one line of text without its end, on the thread that builds.
using BuildLog = std::function<void(const std::string& line)>;

/// Builds the pack into the folder `into`, which is replaced whole once the new pack is complete; a
/// failure or an interruption leaves it as it was. Converted recordings stay in `cache`. Throws
/// `RecipeError`, `DownloadError`, `PackError`, or the file system's own error; what is wrong with
/// `recipe` and `into` is found before anything is fetched.
void buildRecordedPack(const PackRecipe& recipe, const std::filesystem::path& cache,
                       const std::filesystem::path& into, const BuildLog& log,
                       const ProcessRunner& programs, const FolderExchange& exchange = {});

}  // namespace tobrin
