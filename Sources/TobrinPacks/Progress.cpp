#include "Progress.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <utility>

namespace tobrin {
namespace {

using Clock = std::chrono::steady_clock;
constexpr auto silence = std::chrono::seconds(1);
constexpr auto interval = std::chrono::milliseconds(200);

bool isTerminal(const std::ostream& stream) {
  return &stream == &std::cerr && ::isatty(STDERR_FILENO) != 0;
}

}  // namespace

Progress::Progress(std::ostream& err, std::string what)
    : err_(err),
      what_(std::move(what)),
      next_(isTerminal(err) ? Clock::now() + silence : Clock::time_point::max()) {}

Progress::~Progress() {
  if (isShown_) err_ << "\r\033[K" << std::flush;
}

void Progress::show(double fraction) {
  const int percent = static_cast<int>(std::clamp(fraction, 0.0, 1.0) * 100);
  show(std::to_string(percent) + " %");
}

void Progress::show(const std::string& state) {
  if (Clock::now() < next_) return;
  next_ = Clock::now() + interval;
  isShown_ = true;
  err_ << '\r' << what_ << ": " << state << "\033[K" << std::flush;
}

}  // namespace tobrin
