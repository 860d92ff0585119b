/// Types on a virtual keyboard that it makes through the kernel. Needs access to /dev/uinput.
/// Thread: main.
#pragma once

#include <string>

#include "Input/KeyTyper.h"

struct libevdev_uinput;

namespace tobrin {

class UinputTyper final : public KeyTyper {
 public:
  UinputTyper() = default;
  ~UinputTyper() override;
  UinputTyper(const UinputTyper&) = delete;
  UinputTyper& operator=(const UinputTyper&) = delete;

  /// Waits half a second for the session to take the new keyboard up.
  bool open() override;
  bool send(uint16_t code, KeyAction action) override;
  [[nodiscard]] std::string problem() const override { return problem_; }

 private:
  libevdev_uinput* keyboard_ = nullptr;
  std::string problem_;
};

}  // namespace tobrin
