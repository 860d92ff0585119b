/// Scripts of key presses as JSON: a list of {"time", "code", "action", "position"}. Thread: any.
#pragma once

#include <string_view>
#include <vector>

#include "Engine/TypingScript.h"

namespace tobrin {

/// Longest time in a script: past it no WAV file would hold the result.
inline constexpr double longestScript = 24 * 3600;  // s

/// `time` in seconds from 0 to `longestScript`, `code` from 0 to 65535, `action` "down" or "up",
/// `position` from 0 to 3. Throws `std::runtime_error` naming the entry and the key at fault.
std::vector<ScriptedKey> parseScript(std::string_view json);

}  // namespace tobrin
