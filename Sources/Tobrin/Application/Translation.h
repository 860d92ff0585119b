/// The user's language, where there is a translation of the program's texts into it. The panel and
/// the tray speak it; terminal and log speak English, for scripts and helpers. Thread: main.
#pragma once

#include <string>
#include <string_view>

namespace tobrin {

/// Takes the system's language; to be called once, when the application object exists.
void installTranslation();

/// One of the sentences of the model or the platform in that language; the text itself where there
/// is no translation.
[[nodiscard]] std::string translated(std::string_view english);

}  // namespace tobrin
