/// Tells a focus that went with the pointer, as on desktops where it follows the mouse, from one
/// that a click in another place or the keyboard took away. Thread: main.
#pragma once

#include <chrono>
#include <optional>

namespace tobrin {

class FocusLoss final {
 public:
  using Time = std::chrono::steady_clock::time_point;
  using Duration = std::chrono::milliseconds;

  void opened();
  void pointerEntered();
  void pointerLeft(Time now);
  /// `byKeyboard`: a key that switches windows was held.
  void focusLost(Time now, bool byKeyboard);

  /// How long to wait from the loss before asking `wentWithPointer`.
  [[nodiscard]] Duration patience() const;
  /// Whether the pointer took the focus along.
  [[nodiscard]] bool wentWithPointer() const;

 private:
  enum class Pointer { awaited, inside, outside };

  Pointer pointer_ = Pointer::awaited;
  Pointer pointerAtLoss_ = Pointer::awaited;
  std::optional<Time> left_;
  Time lost_;
  bool byKeyboard_ = false;
};

}  // namespace tobrin
