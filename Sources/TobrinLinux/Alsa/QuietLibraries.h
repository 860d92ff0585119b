/// Keeps the libraries that ALSA plays through from printing each failed attempt: this program says
/// itself, once, what matters.
#pragma once

namespace tobrin {

/// To be called before the library is used. Thread: any.
void quietenAlsa();

/// To be called before a device that leads to JACK is opened, which loads that library and has it
/// complain at every try. Thread: any.
void quietenJack();

}  // namespace tobrin
