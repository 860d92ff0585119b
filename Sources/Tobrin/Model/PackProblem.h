/// Why a pack could not be added, removed or brought back. Thread: any.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace tobrin {

struct PackProblem {
  enum class Kind : uint8_t {
    noPack,    ///< nothing in it is a pack
    mouse,     ///< sounds of mouse buttons
    tooLarge,  ///< more than any pack holds
    noSounds,  ///< a pack without a sound that can be used
    notAdded,  ///< `reason` says why, as with the next two
    notRemoved,
    notBroughtBack
  };

  Kind kind = Kind::notAdded;
  std::string name;        ///< of the file, or of the pack
  std::string reason{};    ///< in English
  std::size_t others = 0;  ///< that could not be added either

  bool operator==(const PackProblem&) const = default;

  /// In a sentence or two. `translate` brings an English text of ours into the user's language.
  [[nodiscard]] std::string sentence(
      const std::function<std::string(std::string_view english)>& translate) const;
};

}  // namespace tobrin
