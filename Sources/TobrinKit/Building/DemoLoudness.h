/// How loud a pack is in use: the loudness of a sentence typed with it. Thread: any.
#pragma once

#include <filesystem>

#include "Packs/LoadedPack.h"

namespace tobrin {

/// Integrated loudness in LUFS of the demo sentence, played from a pack loaded at 48 kHz at 85
/// words a minute with default settings; minus infinity where nothing is loud enough to count.
double demoLoudness(const LoadedPack& pack);

/// The same for a pack folder. Throws `PackError`.
double demoLoudness(const std::filesystem::path& packFolder);

}  // namespace tobrin
