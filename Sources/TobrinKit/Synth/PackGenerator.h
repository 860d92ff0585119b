/// Turns a synth profile into a sound pack on disk: 60 takes as WAV files and their "pack.json".
/// The same profile always gives the same bytes. Thread: any; uses several.
#pragma once

#include <filesystem>

#include "Synth/SynthProfile.h"

namespace tobrin {

struct PackGenerator {
  static constexpr unsigned alphaVariants = 4;    ///< per tier, and releases, of the letters
  static constexpr unsigned otherVariants = 2;    ///< of every other group
  static constexpr float referencePeak = 0.316f;  ///< of the loudest medium letter, about -10 dBFS

  /// Writes the pack as the folder `parent`/id, in place of whatever stands there, and returns that
  /// folder. Takes are rendered on up to `threads` threads, 0 for one a core. Throws the file
  /// system's own error; what was written until then stays, and the next generation replaces it.
  /// An id that is no plain folder name throws `std::invalid_argument` and touches nothing.
  static std::filesystem::path generate(const SynthProfile& profile,
                                        const std::filesystem::path& parent, unsigned threads = 0);
};

}  // namespace tobrin
