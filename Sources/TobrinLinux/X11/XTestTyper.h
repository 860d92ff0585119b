/// Types through the X server's test extension. Thread: main.
#pragma once

#include <string>

#include "Input/KeyTyper.h"
#include "X11/XConnection.h"

namespace tobrin {

class XTestTyper final : public KeyTyper {
 public:
  bool open() override;
  bool send(uint16_t code, KeyAction action) override;
  [[nodiscard]] std::string problem() const override { return problem_; }

 private:
  XConnection connection_;
  std::string problem_;
};

}  // namespace tobrin
