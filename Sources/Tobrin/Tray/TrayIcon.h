/// The tray item's symbol: a keyboard that sounds, or one that is muted.
#pragma once

#include <QIcon>

namespace tobrin {

/// By its name where the desktop's icon theme has it, so that the bar draws it at its own size, or
/// in its own colour if it prefers symbolic icons; as pictures everywhere else. Nobody tells what
/// colour a bar has, so both are light with a dark outline. Thread: main.
QIcon trayIcon(bool playing);

}  // namespace tobrin
