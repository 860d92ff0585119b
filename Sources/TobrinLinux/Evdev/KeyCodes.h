/// The one table between the kernel's key codes (evdev) and the virtual key codes used everywhere
/// else. Thread: any.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace tobrin {

/// An X server's key codes are the kernel's plus this.
inline constexpr uint16_t xKeyCodeOffset = 8;

/// The code of a mouse button among those of `MouseButton`; nothing for every other kernel key
/// code.
std::optional<uint16_t> mouseCodeOf(uint32_t kernelCode);

/// The virtual key code of a kernel key code; nothing for keys that are not part of typing (media,
/// volume, power, mouse buttons), which stay silent.
std::optional<uint16_t> virtualCodeOf(uint32_t kernelCode);

/// The kernel codes of a virtual key code, the usual one first; several where PC keyboards have
/// more keys than there are virtual codes.
std::vector<uint16_t> kernelCodesOf(uint32_t virtualCode);

}  // namespace tobrin
