/// Waiting for what other threads and programs do.
#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace tobrin::testing {

/// Whether `condition` comes to hold in time; generous, for busy machines.
inline bool eventually(const std::function<bool()>& condition,
                       std::chrono::milliseconds limit = std::chrono::seconds(10)) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}

}  // namespace tobrin::testing
