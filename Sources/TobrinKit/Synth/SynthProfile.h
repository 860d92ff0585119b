/// The fixed recipe of one synthesized switch sound. Plain values; the built-in profiles are
/// constants of the program. Thread: any.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tobrin {

struct SynthProfile {
  /// One decaying sinusoid.
  struct Mode {
    double frequency = 0;  ///< Hz
    double decay = 0;      ///< time constant, s
    double amplitude = 0;  ///< linear

    bool operator==(const Mode&) const = default;
  };

  /// White noise through a band-pass, decaying.
  struct Burst {
    double center = 0;     ///< Hz
    double q = 0;          ///< quality of the band-pass
    double decay = 0;      ///< time constant, s
    double amplitude = 0;  ///< linear

    bool operator==(const Burst&) const = default;
  };

  /// What is heard before the key strikes bottom: a click or a tactile bump.
  struct Early {
    double leadMilliseconds = 0;  ///< ahead of the strike
    Burst burst;
    std::optional<Mode> tone;
    double onRelease = 0;  ///< level of its repetition on the release, 0 (none) to 1

    bool operator==(const Early&) const = default;
  };

  std::string id;  ///< also the pack's id and folder name
  std::string name;
  std::string kind;
  std::string summary;
  std::vector<Mode> modes;  ///< the key's resonant body, lowest first
  Burst impact;             ///< the key striking bottom
  Mode thump;               ///< the case's low thock
  std::optional<Early> early;
  std::optional<Mode> ping;  ///< a faint high ring of the press
  double brightness = 0;     ///< corner of the overall low-pass at full force, Hz
  double room = 0;           ///< amount of early reflections
  double releasePitch = 1;   ///< of the release, relative to the press
  double releaseLevel = 1;   ///< of the release, relative to the press
  bool bellOnEnter = false;  ///< carriage and bell on the press of Return

  bool operator==(const SynthProfile&) const = default;

  static const SynthProfile& cream();
  static const SynthProfile& click();
  static const SynthProfile& panda();
  static const SynthProfile& dome();
  static const SynthProfile& typewriter();

  /// The five above, in this order.
  static std::span<const SynthProfile> starterPacks();
};

}  // namespace tobrin
