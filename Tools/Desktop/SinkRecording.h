/// Records what a private desktop session plays, and finds the sounds in it. Thread: main.
#pragma once

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "Support/TempFolder.h"
#include "Tools/Desktop/ChildProcess.h"

namespace tobrin::testing {

/// What a sink plays, recorded from its monitor by a program that real-time scheduling keeps from
/// losing any of it.
class SinkRecording {
 public:
  explicit SinkRecording(const std::string& sink)
      : recorder_({TOBRIN_RECORD_SINK, sound_, sink}, ChildProcess::Output::announced) {
    if (recorder_.firstLine().front() != 'r') throw std::runtime_error("nothing is recorded");
  }

  /// Frames so far that are not silent, channel by channel.
  [[nodiscard]] std::vector<std::pair<float, float>> heard() const {
    std::ifstream file(sound_, std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(file), {});
    const auto header = bytes.find("data");
    std::vector<std::pair<float, float>> frames;
    if (header == std::string::npos) return frames;
    for (auto at = header + 8; at + 8 <= bytes.size(); at += 8) {
      float pair[2];
      std::memcpy(pair, bytes.data() + at, sizeof pair);
      if (pair[0] != 0 || pair[1] != 0) frames.emplace_back(pair[0], pair[1]);
    }
    return frames;
  }

  /// How often the sound server's clock has jumped: a cycle was missed, by whom is not known.
  [[nodiscard]] std::ptrdiff_t missedCycles() const {
    std::ifstream clock(sound_ + ".clock");
    return std::count(std::istreambuf_iterator<char>(clock), {}, '\n');
  }

 private:
  TempFolder folder_;
  const std::string sound_ = folder_.path() / "sound.wav";
  ChildProcess recorder_;
};

}  // namespace tobrin::testing
