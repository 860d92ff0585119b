/// What the program says about the machine it runs on, in the words that are true here.
#pragma once

#include <string_view>

namespace tobrin::platformWords {

/// What the microphone watch looks at.
inline constexpr std::string_view micWatchScope = "sound server state only, nothing is recorded";

/// In place of who records, where nobody can tell.
inline constexpr std::string_view recordersUnknown = "unknown (the sound server does not say)";

}  // namespace tobrin::platformWords
