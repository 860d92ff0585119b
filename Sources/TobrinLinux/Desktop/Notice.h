/// A text that the desktop shows for a few seconds, to people who see no terminal. Thread: any.
#pragma once

#include <string>

namespace tobrin {

/// Asks the desktop to show it and waits for the answer, for two seconds at most. False where
/// nobody shows such texts.
bool showNotice(const std::string& title, const std::string& text);

}  // namespace tobrin
