/// A pack of another format, as it was read: which key plays which part of which file. Plain
/// values; our own key codes. Thread: any.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Importing/SourceFiles.h"

namespace tobrin {

struct SoundRef {
  /// A part of a file, in milliseconds from its start. Neither need lie inside the sound.
  struct Part {
    double startMs = 0;
    double lengthMs = 0;

    [[nodiscard]] double endMs() const { return startMs + lengthMs; }
    // NOLINTNEXTLINE(modernize-use-nullptr): what the compiler writes for it
    auto operator<=>(const Part&) const = default;
  };

  const SourceFiles::File* file = nullptr;  ///< of the source, which outlives this; never null
  std::optional<Part> part;                 ///< absent: the whole file

  // NOLINTNEXTLINE(modernize-use-nullptr): as above
  auto operator<=>(const SoundRef&) const = default;
};

/// What a key plays; one at random where there are several, nothing where there is none.
struct KeySounds {
  std::vector<SoundRef> down;
  std::vector<SoundRef> up;

  bool operator==(const KeySounds&) const = default;
};

struct ForeignPack {
  std::string format;  ///< for people: which format it was taken for
  std::string id;
  std::string name;
  std::string summary;
  std::string author;
  std::string license;
  std::map<uint16_t, KeySounds> keys;  ///< by our key code; those that the pack names
  KeySounds others;                    ///< of all keys that the pack does not name
};

}  // namespace tobrin
