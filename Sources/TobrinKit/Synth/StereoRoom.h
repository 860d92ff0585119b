/// The last steps of a key sound: early reflections that make it stereo, and the cut of its silent
/// tail. Thread: any.
#pragma once

#include <vector>

namespace tobrin {

/// Two channels of equal length, in double precision.
struct StereoTake {
  std::vector<double> left;
  std::vector<double> right;
};

/// Six reflections of the dry sound (48 kHz), darker than it and weighted differently per channel;
/// `amount` scales them, 0 leaves two equal channels.
StereoTake withRoom(std::vector<double> dry, double amount);

/// Cuts what follows the last sample within 70 dB of the peak by more than 4 ms, and fades the last
/// 4 ms to exactly 0. Silence stays as it is.
void trim(StereoTake& take);

}  // namespace tobrin
