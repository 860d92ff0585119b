/// The only random generator of the system (SplitMix64, Steele, Lea and Flood 2014), always seeded
/// explicitly, so that every sound can be made again. A plain value. Thread: any.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

namespace tobrin {

class SplitMix64 {
 public:
  explicit constexpr SplitMix64(uint64_t seed) : state_(seed) {}

  constexpr uint64_t next() {
    state_ += goldenGamma;
    uint64_t z = state_;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
  }

  /// Uniform in [0, 1).
  constexpr double unit() { return static_cast<double>(next() >> 11) * 0x1p-53; }

  /// Uniform in [-1, 1).
  constexpr double signedUnit() { return 2.0 * unit() - 1.0; }

  static constexpr uint64_t goldenGamma = 0x9E3779B97F4A7C15u;

 private:
  uint64_t state_;
};

/// Fisher-Yates, seeded by the length alone: the same length always gives the same permutation.
template <typename T>
std::vector<T> shuffledDeterministically(std::vector<T> items) {
  SplitMix64 rng(static_cast<uint64_t>(items.size()) * 0x9E3779B9u);
  for (std::size_t i = items.size(); i-- > 1;) {
    const auto j = static_cast<std::size_t>(rng.next() % (i + 1));
    if (j != i) std::swap(items[i], items[j]);
  }
  return items;
}

}  // namespace tobrin
