/// A recording on disk: the sound as a WAV file of floats, and next to it the times of its frames.
/// Thread: main.
#pragma once

#include <sndfile.h>

#include <cstdint>
#include <fstream>
#include <memory>
#include <string>

#include "PipeWire/BlockRing.h"
#include "StreamFormat.h"

namespace tobrin::testing {

/// The file of times, PATH + ".clock", has a line "FRAME NS" for every frame from which on times no
/// longer follow from the line before by the sample rate: one line for an unbroken recording.
class TimedRecording final {
 public:
  /// Throws std::runtime_error naming the file that cannot be written.
  explicit TimedRecording(const std::string& path);
  ~TimedRecording();
  TimedRecording(const TimedRecording&) = delete;
  TimedRecording& operator=(const TimedRecording&) = delete;

  void append(const TimedBlock& block);

 private:
  SNDFILE* sound_;
  std::ofstream clock_;
  int64_t frames_ = 0;
  int64_t runFrame_ = 0;  // where the present run of regular times began
  int64_t runNs_ = 0;
};

}  // namespace tobrin::testing
