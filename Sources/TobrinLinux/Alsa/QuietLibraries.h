/// Keeps the libraries that ALSA plays through from printing each failed attempt: this program
/// itself says once what matters. Thread: any.
#pragma once

namespace tobrin {

/// Call it before the library is used.
void quietenAlsa();

/// Call it before a device that leads to JACK is opened: that loads the library, which complains at
/// every try.
void quietenJack();

}  // namespace tobrin
