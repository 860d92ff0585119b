// find-onsets: prints "onset NS PEAK" for every sound that begins in a recording of record-sink, NS
// being the time of its first sample on CLOCK_MONOTONIC and PEAK its loudest one in dBFS.
#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "OnsetDetector.h"

namespace {

using tobrin::testing::OnsetDetector;

struct Run {
  size_t frame = 0;
  int64_t ns = 0;
};

/// The times of a recording's frames. A capture that wakes late reads the clock of a later cycle
/// than the one it serves, so a few blocks may seem to come later than they did; that no time was
/// lost shows in the blocks after them, which fall in with those before. Such an excursion is left
/// out.
class RecordedClock final {
 public:
  explicit RecordedClock(const std::string& path) {
    std::ifstream lines(path);
    for (Run run; lines >> run.frame >> run.ns;) {
      for (size_t back = 2; back <= std::min(longestExcursion, runs_.size()); ++back) {
        if (!continues(runs_[runs_.size() - back], run)) continue;
        runs_.resize(runs_.size() - back + 1);
        break;
      }
      if (runs_.empty() || !continues(runs_.back(), run)) runs_.push_back(run);
    }
    if (runs_.empty()) throw std::runtime_error("no times in " + path);
  }

  [[nodiscard]] int64_t timeOf(size_t frame) const {
    const auto after =
        std::upper_bound(runs_.begin(), runs_.end(), frame,
                         [](size_t wanted, const Run& run) { return wanted < run.frame; });
    return predicted(after == runs_.begin() ? runs_.front() : *std::prev(after), frame);
  }

 private:
  static constexpr size_t longestExcursion = 5;  // runs
  static constexpr int64_t sampleNs = 20'833;

  static int64_t predicted(const Run& run, size_t frame) {
    return run.ns + std::llround(static_cast<double>(frame - run.frame) * 1e9 / 48000);
  }
  static bool continues(const Run& run, const Run& next) {
    return std::abs(predicted(run, next.frame) - next.ns) < sampleNs;
  }

  std::vector<Run> runs_;
};

void detect(const std::string& path, OnsetDetector& detector) {
  SF_INFO info{};
  SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
  if (file == nullptr) throw std::runtime_error("cannot read " + path);
  const auto channels = static_cast<size_t>(info.channels);
  std::vector<float> frames(4096 * channels);
  for (sf_count_t count; (count = sf_readf_float(file, frames.data(), 4096)) > 0;)
    for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
      float magnitude = 0;
      for (size_t c = 0; c < channels; ++c)
        magnitude = std::max(magnitude, std::abs(frames[i * channels + c]));
      detector.add(magnitude);
    }
  sf_close(file);
}

}  // namespace

int main(int count, char** words) {
  if (count != 2 && count != 3) {
    std::cerr << "find-onsets RECORDING.wav [FLOOR-DBFS, default -60]\n";
    return 2;
  }
  try {
    const std::string path = words[1];
    OnsetDetector detector(
        static_cast<float>(std::pow(10.0, (count == 3 ? std::stod(words[2]) : -60.0) / 20)));
    detect(path, detector);
    const RecordedClock clock(path + ".clock");
    for (const auto& onset : detector.onsets())
      std::printf("onset %lld %.1f\n", static_cast<long long>(clock.timeOf(onset.frame)),
                  20 * std::log10(static_cast<double>(onset.peak)));
  } catch (const std::exception& error) {
    std::cerr << "find-onsets: " << error.what() << "\n";
    return 1;
  }
  return 0;
}
