/// How often this process wakes up.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

namespace tobrin::testing {

/// How often a process may wake in a second in which nothing happens.
#ifdef __SANITIZE_THREAD__
constexpr uint64_t restingWakeUps = 20;  // the sanitizer has a thread that looks around
#else
constexpr uint64_t restingWakeUps = 5;
#endif

/// How often the threads of this process have slept and been woken.
inline uint64_t wakeUps() {
  uint64_t sum = 0;
  for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
    std::ifstream status(thread.path() / "status");
    for (std::string word; status >> word;) {
      uint64_t count = 0;
      if (word == "voluntary_ctxt_switches:" && status >> count) sum += count;
    }
  }
  return sum;
}

}  // namespace tobrin::testing
