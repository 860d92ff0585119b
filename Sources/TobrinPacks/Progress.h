/// Shows a person at a terminal how far a long operation has come. Shows nothing in the first
/// second, or where standard error is no terminal. Thread: main.
#pragma once

#include <chrono>
#include <ostream>
#include <string>

namespace tobrin {

class Progress final {
 public:
  /// `what` names the operation, such as "rendering".
  Progress(std::ostream& err, std::string what);
  /// Clears the line.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// `fraction` from 0 to 1.
  void show(double fraction);
  /// How far it is, in words.
  void show(const std::string& state);

 private:
  std::ostream& err_;
  std::string what_;
  std::chrono::steady_clock::time_point next_;
  bool isShown_ = false;
};

}  // namespace tobrin
