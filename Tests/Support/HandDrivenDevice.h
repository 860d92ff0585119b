/// An audio device that a test drives by hand: blocks are rendered when the test asks, and starts
/// succeed or fail as it says.
#pragma once

#include <atomic>
#include <cassert>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Engine/AudioDevice.h"

namespace tobrin::testing {

class HandDrivenDevice final : public AudioDevice {
 public:
  /// What a test keeps of a device that the output owns.
  struct Controls {
    AudioCallbacks callbacks;
    std::string refusal;  ///< why starts fail; empty: they succeed
    bool running = false;
    std::atomic<int> starts = 0;
    std::atomic<int> pauses = 0;
    std::string chosen;  ///< id of the output; empty: the default one
    int searches = 0;    ///< for outputs

    /// Has the next block rendered; silence while the device does not run.
    std::pair<std::vector<float>, std::vector<float>> render(uint32_t frames) {
      std::vector<float> left(frames), right(frames);
      if (running) callbacks.render(callbacks.context, left.data(), right.data(), frames);
      return {left, right};
    }

    /// The sound system goes away, for `reason`, or comes back.
    void lose(std::string reason) {
      running = false;
      refusal = std::move(reason);
      callbacks.changed();
    }
    void recover() {
      refusal.clear();
      callbacks.changed();
    }
  };

  explicit HandDrivenDevice(std::shared_ptr<Controls> controls) : controls_(std::move(controls)) {}

  bool start() override {
    ++controls_->starts;
    controls_->running = controls_->refusal.empty();
    return controls_->running;
  }
  void pause() override {
    ++controls_->pauses;
    controls_->running = false;
  }
  [[nodiscard]] bool isRunning() const override { return controls_->running; }
  [[nodiscard]] std::string problem() const override { return controls_->refusal; }
  [[nodiscard]] std::string description() const override { return "a device driven by hand"; }
  void setCallbacks(AudioCallbacks callbacks) override {
    controls_->callbacks = std::move(callbacks);
  }
  void choose(const std::string& id) override { controls_->chosen = id; }
  void findOutputs() override { ++controls_->searches; }

 private:
  const std::shared_ptr<Controls> controls_;  // shared with the test
};

}  // namespace tobrin::testing
