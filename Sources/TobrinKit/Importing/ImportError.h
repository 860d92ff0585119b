/// Why a pack could not be imported. Its text is shown to the user as it stands. Thread: any.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace tobrin {

class ImportError final : public std::runtime_error {
 public:
  enum class Kind : uint8_t {
    unreadable,  ///< no such file, no archive, or a damaged one
    noPack,      ///< nothing in it describes a pack
    mouse,       ///< sounds of mouse buttons
    ours,        ///< a Tobrin pack already
    tooLarge,    ///< more than any honest pack holds
    noSounds     ///< a pack, but none of its sounds can be used
  };

  ImportError(Kind kind, const std::string& text) : std::runtime_error(text), kind_(kind) {}

  [[nodiscard]] Kind kind() const { return kind_; }

 private:
  Kind kind_;
};

}  // namespace tobrin
