/// Which channel of a stereo microphone hears the keyboard better. The sum of the two is no
/// answer: some computers record one of them upside down, or leave one empty.
/// Thread: any, one at a time.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace tobrin {

class ChannelChoice final {
 public:
  explicit ChannelChoice(double rate);

  /// Left and right, interleaved.
  void add(std::span<const float> interleaved);

  /// 0 for left, 1 for right: the one whose loud moments stand out most above its quiet ones; left
  /// where there is no clear difference.
  [[nodiscard]] std::size_t better() const;

 private:
  [[nodiscard]] static double contrast(std::vector<float> energies);

  const std::size_t windowFrames_;              // fixed after construction
  std::array<std::vector<float>, 2> energies_;  // of each window
  std::array<float, 2> last_{};
  std::array<float, 2> sum_{};
  std::size_t frames_ = 0;  // in the window under way
};

}  // namespace tobrin
