/// Renders a block every 5.3 ms as a sound card would ask for it, on its own thread, and tells
/// when the first sound since the last question was in it.
#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "Base/MachTime.h"
#include "Engine/AudioDevice.h"

namespace tobrin {

class PacedDevice final : public AudioDevice {
 public:
  /// When the first block with a sound was rendered, in ticks; 0 before. Shared with its reader.
  using FirstSound = std::atomic<uint64_t>;

  explicit PacedDevice(FirstSound* firstSound = nullptr) : firstSound_(firstSound) {}
  ~PacedDevice() override { pause(); }

  bool start() override {
    if (running_.exchange(true)) return true;
    thread_ = std::thread([this] { renderBlocks(); });
    return true;
  }
  void pause() override {
    running_ = false;
    if (thread_.joinable()) thread_.join();
  }
  [[nodiscard]] bool isRunning() const override { return running_; }
  [[nodiscard]] std::string problem() const override { return {}; }
  [[nodiscard]] std::string description() const override { return "nothing"; }
  void setCallbacks(AudioCallbacks callbacks) override { callbacks_ = std::move(callbacks); }
  void choose(const std::string& /*id*/) override {}
  void findOutputs() override {}

 private:
  static constexpr uint32_t frames = 256;

  void renderBlocks() {
    std::vector<float> left(frames), right(frames);
    while (running_) {
      callbacks_.render(callbacks_.context, left.data(), right.data(), frames);
      if (firstSound_ != nullptr && *firstSound_ == 0 &&
          std::ranges::any_of(left, [](float sample) { return sample != 0; }))
        *firstSound_ = machNow();
      std::this_thread::sleep_for(std::chrono::microseconds(5333));
    }
  }

  FirstSound* firstSound_;
  AudioCallbacks callbacks_;
  std::atomic<bool> running_ = false;
  std::thread thread_;
};

}  // namespace tobrin
