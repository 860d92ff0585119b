#include "TimedRecording.h"

#include <cmath>
#include <stdexcept>

namespace tobrin::testing {

TimedRecording::TimedRecording(const std::string& path) : clock_(path + ".clock") {
  SF_INFO info{};
  info.samplerate = static_cast<int>(sampleRate);
  info.channels = static_cast<int>(channelCount);
  info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
  sound_ = sf_open(path.c_str(), SFM_WRITE, &info);
  if (sound_ == nullptr || !clock_) throw std::runtime_error("cannot write " + path);
}

TimedRecording::~TimedRecording() {
  sf_close(sound_);
}

void TimedRecording::append(const TimedBlock& block) {
  const double sinceRunNs = static_cast<double>(frames_ - runFrame_) * 1e9 / sampleRate;
  const double deviationNs = static_cast<double>(block.startNs - runNs_) - sinceRunNs;
  // Half a sample. The timer's whole nanoseconds drift by far less in a minute.
  if (frames_ == 0 || std::abs(deviationNs) > 0.5e9 / sampleRate) {
    runFrame_ = frames_;
    runNs_ = block.startNs;
    clock_ << runFrame_ << " " << runNs_ << std::endl;
  }
  sf_writef_float(sound_, block.samples.data(), static_cast<sf_count_t>(block.frames));
  frames_ += static_cast<int64_t>(block.frames);
}

}  // namespace tobrin::testing
