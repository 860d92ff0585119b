#include "Engine/ForceReplay.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <deque>
#include <map>
#include <memory>
#include <utility>

#include "Base/MachTime.h"
#include "Base/VirtualQueue.h"
#include "Engine/Conductor.h"
#include "Force/TraceSource.h"

namespace tobrin {
namespace {

/// An output that nobody hears: takes the mixer's commands off its ring and renders nothing.
class SilentDevice final : public AudioDevice {
 public:
  bool start() override { return running_ = true; }
  void pause() override { running_ = false; }
  [[nodiscard]] bool isRunning() const override { return running_; }
  [[nodiscard]] std::string problem() const override { return {}; }
  [[nodiscard]] std::string description() const override { return "silence"; }
  void setCallbacks(AudioCallbacks callbacks) override { callbacks_ = std::move(callbacks); }
  void choose(const std::string& /*id*/) override {}
  void findOutputs() override {}

  void drain() {
    std::array<float, 1> none{};
    if (running_) callbacks_.render(callbacks_.context, none.data(), none.data(), 0);
  }

 private:
  AudioCallbacks callbacks_;
  bool running_ = false;
};

std::shared_ptr<const LoadedPack> silentPack() {
  const std::array<float, 1> silence{};
  LoadedPack::Contents contents;
  contents.buffers.push_back(
      std::make_unique<SampleBuffer>(silence, std::span<const float>{}, AudioOutput::sampleRate));
  for (const KeyGroup group : allKeyGroups)
    contents.down[group][Tier::medium] = {0};
  return std::make_shared<const LoadedPack>(PackInfo{}, PackManifest{}, std::move(contents));
}

class Replay {
 public:
  Replay(const MotionTrace& motion, uint64_t start)
      : clock_(std::make_shared<VirtualTraceClock>(start)),
        queue_(Conductor::queueName, start),
        conductor_(queue_, makeAudio(), makeSensor(motion)) {}

  std::vector<ReplayedStage> run(const KeyTrace& keys, float sensitivity);

 private:
  std::unique_ptr<AudioOutput> makeAudio() {
    auto device = std::make_unique<SilentDevice>();
    device_ = device.get();
    return std::make_unique<AudioOutput>(std::move(device));
  }
  std::unique_ptr<ForceSensor> makeSensor(const MotionTrace& motion) {
    auto sensor = std::make_unique<ForceSensor>(
        std::make_unique<TraceSource>(motion, "replay", clock_, TraceSource::Times::recorded));
    sensor_ = sensor.get();
    return sensor;
  }
  void runUntil(uint64_t time);

  std::shared_ptr<VirtualTraceClock> clock_;  // shared with the trace's source
  VirtualQueue queue_;
  SilentDevice* device_ = nullptr;  // owned by the conductor's output
  ForceSensor* sensor_ = nullptr;   // owned by the conductor
  Conductor conductor_;
};

std::vector<ReplayedStage> Replay::run(const KeyTrace& keys, float sensitivity) {
  std::vector<ReplayedStage> stages;
  // Refinements name the key by code and time; equal ones come in the order of the list.
  using Name = std::pair<uint16_t, uint64_t>;
  std::map<std::pair<Name, double>, std::deque<std::size_t>> waiting;
  conductor_.setOnForceStage([&](const ForceStage& stage) {
    std::deque<std::size_t>& indices = waiting[{{stage.code, stage.keyTime}, stage.delayMs}];
    if (indices.empty()) return;
    stages.push_back({indices.front(), stage});
    indices.pop_front();
  });
  EngineSettings settings;
  settings.sensitivity = sensitivity;
  conductor_.apply(settings, true);
  conductor_.setPack(silentPack());
  runUntil(queue_.now());
  for (std::size_t i = 0; i < keys.keys.size(); ++i) {
    const KeyTrace::KeyDown& key = keys.keys[i];
    for (const double delay : {0.0, 4.0, 10.0, 16.0})
      waiting[{{key.code, key.time}, delay}].push_back(i);
    runUntil(key.time);
    conductor_.handle({key.code, KeyAction::down, key.time});
    runUntil(key.time);
  }
  runUntil(queue_.now() + machTicks(Conductor::refineAtMs.back()));
  conductor_.shutdown();
  return stages;
}

// The sensor is given all samples up to each task's time before the task runs.
void Replay::runUntil(uint64_t time) {
  for (auto due = queue_.nextDue(); due && *due <= time; due = queue_.nextDue()) {
    clock_->advanceTo(*due);
    queue_.runUntil(*due);
    sensor_->awaitStart();  // the trace's time stands still while it opens
    device_->drain();
  }
  clock_->advanceTo(time);
  queue_.runUntil(time);
}

}  // namespace

std::vector<ReplayedStage> replayForce(const MotionTrace& motion, const KeyTrace& keys,
                                       float sensitivity) {
  assert(!motion.samples.empty());
  uint64_t start = motion.samples.front().time;
  if (!keys.keys.empty()) start = std::min(start, keys.keys.front().time);
  return Replay(motion, start).run(keys, sensitivity);
}

}  // namespace tobrin
