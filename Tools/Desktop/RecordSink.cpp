// record-sink: records what a sink plays into OUT.wav, and the time of its frames on
// CLOCK_MONOTONIC into OUT.wav.clock, until it is interrupted. Prints "recording" once sound
// arrives. A sound server that goes away is waited for. Exit status 1 when frames were lost.
#include <pipewire/pipewire.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <stdexcept>
#include <string>

#include "MonitorStream.h"
#include "OnsetDetector.h"
#include "PipeWire/BlockRing.h"
#include "PipeWireHandles.h"
#include "TimedRecording.h"

namespace {

using tobrin::BlockRing;
using tobrin::TimedBlock;
using tobrin::testing::MonitorStream;
using tobrin::testing::OnsetDetector;
using tobrin::testing::PipeWireHandle;
using tobrin::testing::TimedRecording;

constexpr timespec drainPeriod{0, 20'000'000};
constexpr int ticksBetweenAttempts = 5;  // a tenth of a second
constexpr float audible = 0.001F;        // -60 dBFS

class Recorder final {
 public:
  Recorder(const std::string& path, const std::string& sink)
      : recording_(path), loop_(pw_main_loop_new(nullptr)), stream_(loop_.get(), sink, ring_) {
    pw_loop* loop = pw_main_loop_get_loop(loop_.get());
    for (const int number : {SIGINT, SIGTERM})
      pw_loop_add_signal(
          loop, number, [](void* self, int) { pw_main_loop_quit(loopOf(self)); }, this);
    spa_source* timer = pw_loop_add_timer(
        loop, [](void* self, uint64_t) { static_cast<Recorder*>(self)->tick(); }, this);
    timespec period = drainPeriod;
    pw_loop_update_timer(loop, timer, &period, &period, false);
  }

  int run() {
    stream_.ensureConnected();
    pw_main_loop_run(loop_.get());
    drain();
    if (ring_.lostFrames() == 0) return 0;
    std::cerr << "record-sink: lost " << ring_.lostFrames() << " frames\n";
    return 1;
  }

 private:
  static pw_main_loop* loopOf(void* self) { return static_cast<Recorder*>(self)->loop_.get(); }

  void tick() {
    if (++ticks_ % ticksBetweenAttempts == 0) stream_.ensureConnected();
    drain();
  }

  void drain() {
    while (const auto* block = ring_.front()) {
      if (!announced_) (void)std::puts("recording");
      announced_ = true;
      recording_.append(*block);
      listen(*block);
      ring_.pop();
    }
    (void)std::fflush(stdout);
  }

  void listen(const TimedBlock& block) {
    const size_t known = detector_.onsets().size();
    for (size_t i = 0; i < block.frames; ++i)
      detector_.add(std::max(std::abs(block.samples[i * 2]), std::abs(block.samples[i * 2 + 1])));
    if (detector_.onsets().size() > known) (void)std::puts("sound");
  }

  BlockRing ring_;
  TimedRecording recording_;
  OnsetDetector detector_{audible};
  PipeWireHandle<pw_main_loop> loop_;
  MonitorStream stream_;
  int ticks_ = 0;
  bool announced_ = false;
};

}  // namespace

int main(int count, char** words) {
  if (count != 2 && count != 3) {
    std::cerr << "record-sink OUT.wav [SINK]\n";
    return 2;
  }
  tobrin::testing::blockEndingSignals();
  pw_init(nullptr, nullptr);
  try {
    return Recorder(words[1], count == 3 ? words[2] : "").run();
  } catch (const std::exception& error) {
    std::cerr << "record-sink: " << error.what() << "\n";
    return 1;
  }
}
