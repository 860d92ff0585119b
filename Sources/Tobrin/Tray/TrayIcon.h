/// The tray item's symbol: a keyboard with sound, or one that is muted. Thread: main.
#pragma once

#include <QIcon>

namespace tobrin {

/// By its name where the desktop's icon theme has it, so that the bar draws it at its own size, or
/// in its own colour if it prefers symbolic icons; as pictures everywhere else. A bar does not
/// say what colour it has, so both are light with a dark outline.
QIcon trayIcon(bool playing);

}  // namespace tobrin
