#include "Building/Loudness.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <vector>

namespace tobrin {
namespace {

constexpr std::size_t hopFrames = 4800;  // 100 ms
constexpr std::size_t hopsPerBlock = 4;
constexpr double blockFrames = hopFrames * hopsPerBlock;
constexpr double absoluteGateLufs = -70;
constexpr double relativeGateLu = -10;

/// Left and right, filtered side by side in one vector register.
using Pair = double __attribute__((vector_size(16)));

/// One second-order section (transposed direct form II).
struct Section {
  double b0, b1, b2, a1, a2;
  Pair z1{}, z2{};

  Pair process(Pair x) {
    const Pair y = b0 * x + z1;
    z1 = b1 * x - a1 * y + z2;
    z2 = b2 * x - a2 * y;
    return y;
  }

  /// Ends a decay long before its numbers become subnormal, where arithmetic is many times slower.
  /// What is dropped is so small that its square is zero.
  void dropInaudibleState() {
    for (int channel = 0; channel < 2; ++channel)
      if (std::fabs(z1[channel]) < 1e-200 && std::fabs(z2[channel]) < 1e-200)
        z1[channel] = z2[channel] = 0;
  }
};

/// The K-weighting filter at 48 kHz: the head's high shelf, then a high-pass.
struct KWeighting {
  Section shelf{1.53512485958697, -2.69169620938640, 1.19839281085285, -1.69065929318241,
                0.73248077421585};
  Section highPass{1, -2, 1, -1.99004745483398, 0.99007225036621};

  Pair process(Pair x) { return highPass.process(shelf.process(x)); }
  void dropInaudibleState() {
    shelf.dropInaudibleState();
    highPass.dropInaudibleState();
  }
};

/// Squares of the filtered signal, summed frame by frame into the four blocks that overlap.
template <bool stereo>
class BlockPowers {
 public:
  BlockPowers(const float* left, const float* right) : left_(left), right_(right) {}

  /// Mean square of every block, summed over channels.
  std::vector<double> measure(std::size_t frames) {
    std::vector<double> powers;
    const std::size_t hops = frames / hopFrames;
    powers.reserve(hops);
    for (std::size_t hop = 0; hop < hops; ++hop) {
      sums_[hop % hopsPerBlock] = Pair{};
      for (std::size_t part = 0; part < hopFrames; part += quietCheckFrames)
        addFrames(hop * hopFrames + part);
      if (hop + 1 < hopsPerBlock) continue;
      const Pair& sum = sums_[(hop + 1) % hopsPerBlock];  // of the oldest block
      powers.push_back(sum[0] / blockFrames + sum[1] / blockFrames);
    }
    return powers;
  }

 private:
  // Short enough that a state above the check's limit cannot decay to subnormal numbers between.
  static constexpr std::size_t quietCheckFrames = 960;
  static_assert(hopFrames % quietCheckFrames == 0);

  void addFrames(std::size_t first) {
    KWeighting filter = filter_;  // copies, which the compiler keeps in registers
    std::array<Pair, hopsPerBlock> sums = sums_;
    for (std::size_t frame = first; frame < first + quietCheckFrames; ++frame) {
      const Pair x{static_cast<double>(left_[frame]),
                   stereo ? static_cast<double>(right_[frame]) : 0.0};
      const Pair y = filter.process(x);
      for (Pair& sum : sums)
        sum += y * y;
    }
    filter.dropInaudibleState();
    filter_ = filter;
    sums_ = sums;
  }

  const float* left_;
  const float* right_;  // null for mono
  KWeighting filter_;
  std::array<Pair, hopsPerBlock> sums_{};  // block number modulo four
};

double lufs(double power) {
  return -0.691 + 10 * std::log10(std::max(power, 1e-20));
}

/// Leaves the blocks that are louder than the threshold.
void gate(std::vector<double>& powers, double thresholdLufs) {
  std::erase_if(powers, [&](double power) { return !(lufs(power) > thresholdLufs); });
}

double mean(const std::vector<double>& powers) {
  double sum = 0;
  for (const double power : powers)
    sum += power;
  return sum / static_cast<double>(powers.size());
}

}  // namespace

double integratedLoudness(std::span<const float> left, std::optional<std::span<const float>> right,
                          double rate) {
  if (rate != 48000 || (right && right->size() < left.size())) std::abort();
  std::vector<double> powers =
      right ? BlockPowers<true>(left.data(), right->data()).measure(left.size())
            : BlockPowers<false>(left.data(), nullptr).measure(left.size());
  gate(powers, absoluteGateLufs);
  if (powers.empty()) return -std::numeric_limits<double>::infinity();
  gate(powers, lufs(mean(powers)) + relativeGateLu);
  return powers.empty() ? lufs(0) : lufs(mean(powers));
}

}  // namespace tobrin
