/// Turns a synth profile into a sound pack on disk: its takes as WAV files, 60 for all key groups,
/// and their "pack.json". The same profile always gives the same bytes. Thread: any.
#pragma once

#include <filesystem>
#include <span>

#include "Base/KeyEvent.h"
#include "Synth/SynthProfile.h"

namespace tobrin {

/// Writes the pack as the folder `parent`/id, in place of what stands there, and returns that
/// folder. Which other groups are written does not change a group's files; only without the letters
/// they have another level. Takes are rendered on up to `threads` threads, 0 for one a core. Throws
/// the file system's own error; what was written until then stays, and the next generation replaces
/// it. An id that is no plain folder name throws `std::invalid_argument` and touches nothing.
std::filesystem::path generatePack(const SynthProfile& profile, const std::filesystem::path& parent,
                                   std::span<const KeyGroup> groups = allKeyGroups,
                                   unsigned threads = 0);

}  // namespace tobrin
