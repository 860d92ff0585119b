// Integrated loudness beside libebur128 on the same signal.
#include <ebur128.h>

#include <cmath>
#include <cstdio>
#include <vector>

#include "Base/SplitMix64.h"
#include "Building/Loudness.h"
#include "Support/Interleaved.h"
#include "Support/Report.h"

namespace tobrin {
namespace {

constexpr unsigned long rate = 48'000;

struct Programme {
  std::vector<float> left, right, interleaved;
};

/// Noise for two seconds of every three, digital silence in the third.
Programme programme(std::size_t seconds) {
  Programme result;
  SplitMix64 rng(7);
  for (std::size_t frame = 0; frame < seconds * rate; ++frame) {
    const double gain = frame / rate % 3 == 2 ? 0 : 0.1;
    result.left.push_back(static_cast<float>(gain * rng.signedUnit()));
    result.right.push_back(static_cast<float>(gain * rng.signedUnit()));
    result.interleaved.push_back(result.left.back());
    result.interleaved.push_back(result.right.back());
  }
  return result;
}

double libraryLoudness(const Programme& programme) {
  ebur128_state* library = ebur128_init(2, rate, EBUR128_MODE_I);
  double lufs = 0;
  ebur128_add_frames_float(library, programme.interleaved.data(), programme.left.size());
  ebur128_loudness_global(library, &lufs);
  ebur128_destroy(&library);
  return lufs;
}

/// Returns whether both measured the same.
bool tenMinutesStereo(Report& report) {
  const Programme signal = programme(600);
  double ours = 0;
  double theirs = 0;
  const auto timings = timeInterleaved(
      {contestant("tobrin",
                  [&] { ours = integratedLoudness(signal.left, signal.right, double{rate}); }),
       contestant("libebur128", [&] { theirs = libraryLoudness(signal); })},
      {.rounds = 7});
  report.add(
      Figure::faster("loudness of 10 minutes stereo", timings[0], "libebur128", timings[1], 1));
  return std::fabs(ours - theirs) < 0.02;
}

}  // namespace
}  // namespace tobrin

int main(int argc, char** argv) {
  tobrin::Report report(argc, argv);
  if (tobrin::tenMinutesStereo(report)) return 0;
  (void)std::fputs("loudness: libebur128 measures otherwise\n", stderr);
  return 1;
}
