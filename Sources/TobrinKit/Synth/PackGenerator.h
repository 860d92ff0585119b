/// Turns a synth profile into a sound pack on disk: 70 takes as WAV files and their "pack.json".
/// The same profile always gives the same bytes. Thread: any.
#pragma once

#include <filesystem>

#include "Synth/SynthProfile.h"

namespace tobrin {

/// Writes the pack as the folder `parent`/id, in place of what stands there, and returns that
/// folder. Takes are rendered on up to `threads` threads, 0 for one a core. Throws the file
/// system's own error; what was written until then stays, and the next generation replaces it. An
/// id that is no plain folder name throws `std::invalid_argument` and touches nothing.
std::filesystem::path generatePack(const SynthProfile& profile, const std::filesystem::path& parent,
                                   unsigned threads = 0);

}  // namespace tobrin
