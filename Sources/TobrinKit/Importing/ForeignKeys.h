/// The keys that other programs' packs name, as the kernel's key numbers: by number as in
/// "config.json", or by name. Pure functions; thread: any.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tobrin {

/// The virtual key code of a kernel key number, nothing for keys that play no sound: the platform
/// supplies it.
using KernelKeyCodes = std::optional<uint16_t> (*)(uint32_t kernelKey);

struct ForeignKeys {
  struct Key {
    uint16_t kernelKey = 0;
    /// A key's second number, which counts only where the usual one is missing.
    bool isSecondary = false;
  };

  /// The key of a decimal number in "config.json".
  static std::optional<Key> numbered(unsigned number);

  /// The kernel key of a name: those of the web ("KeyA", "Digit1", "NumpadEnter"), the kernel's
  /// ("KEY_LEFTSHIFT") or plain words ("left shift"), in any letter case.
  static std::optional<uint16_t> named(std::string_view name);
};

}  // namespace tobrin
