#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace tobrin {

/// Something to be timed: carries out its work the given number of times.
struct Contestant {
  std::string name;
  std::function<void(std::size_t repetitions)> run;
};

/// Makes a contestant of a callable that does the work once.
template <typename Work>
Contestant contestant(std::string name, Work work) {
  return {std::move(name), [work = std::move(work)](std::size_t repetitions) mutable {
            for (std::size_t i = 0; i < repetitions; ++i)
              work();
          }};
}

/// Seconds for the work once.
struct Timing {
  double median = 0;
  double spread = 0;  ///< distance of the quartiles, as a part of the median
};

struct InterleavedOptions {
  std::size_t rounds = 101;
  double secondsARun = 0.0003;  ///< the work is repeated to fill this: less than a time slice
};

/// Times the contestants in turn, round after round, so that what else the machine does falls
/// on all of them alike. Returns one timing for each, in their order.
std::vector<Timing> timeInterleaved(const std::vector<Contestant>& contestants,
                                    const InterleavedOptions& options = {});

}  // namespace tobrin
