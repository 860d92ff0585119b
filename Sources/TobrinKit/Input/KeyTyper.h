/// Makes key events that reach every listener of the session, as if somebody typed. With it the
/// program checks that it receives keys. Thread: main.
#pragma once

#include <cstdint>
#include <string>

#include "Base/KeyEvent.h"

namespace tobrin {

class KeyTyper {
 public:
  virtual ~KeyTyper() = default;

  /// Gets ready to type; false leaves the reason in `problem`.
  virtual bool open() = 0;

  /// Presses or releases a key of the US layout by its virtual key code; false where it could not.
  virtual bool send(uint16_t code, KeyAction action) = 0;

  /// Why there are no synthetic keys here, in words.
  [[nodiscard]] virtual std::string problem() const = 0;
};

}  // namespace tobrin
