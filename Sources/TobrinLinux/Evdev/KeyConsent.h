/// Asks for an administrator's consent that this user's Tobrin hears the keyboards. The desktop
/// shows the question; the owner watches `descriptor` and calls `process` until the answer is
/// there. Given up when destroyed. Thread: main.
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace tobrin {

class KeyConsent final {
 public:
  /// Called once, from `process` or the constructor: why it was not given, empty where it was.
  using Answer = std::function<void(const std::string& problem)>;

  /// With `remember` the consent holds until it is taken back.
  KeyConsent(bool remember, Answer answer);
  ~KeyConsent();
  KeyConsent(const KeyConsent&) = delete;
  KeyConsent& operator=(const KeyConsent&) = delete;

  /// Whether a broker can be asked on this system, running or not.
  static bool isPossible();

  /// To be watched for readability; -1 once there is nothing more to wait for.
  [[nodiscard]] int descriptor() const;

  /// Takes what has come in. False once there is nothing more to wait for.
  bool process();

 private:
  struct Question;
  std::unique_ptr<Question> question_;
};

}  // namespace tobrin
