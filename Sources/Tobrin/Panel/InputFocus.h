/// Whether typing really goes elsewhere when Qt says that a window has lost the focus.
#pragma once

#include <QWindow>

namespace tobrin {

/// True while an X server still has `window` as its input focus: somebody has grabbed the keyboard
/// for a moment, for a shortcut perhaps. False on other platforms.
bool keepsInputFocus(const QWindow& window);

}  // namespace tobrin
