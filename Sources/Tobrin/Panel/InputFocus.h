/// Whether typing really goes to another window when Qt says that a window has lost the focus.
/// Thread: main.
#pragma once

#include <QWindow>

namespace tobrin {

/// True while an X server still has `window` as its input focus: another program has grabbed the
/// keyboard for a moment, for a shortcut perhaps. False on other platforms.
bool keepsInputFocus(const QWindow& window);

}  // namespace tobrin
