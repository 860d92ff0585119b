/// A sound system whose microphones do what a test says.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "Mic/MicSource.h"

namespace tobrin::testing {

/// What a test keeps of a source that the monitor owns.
struct MicState {
  MicActivity activity;
  std::function<void()> changed;  // null while stopped
};

class ScriptedMicSource final : public MicSource {
 public:
  explicit ScriptedMicSource(std::shared_ptr<MicState> state) : state_(std::move(state)) {}

  void start(std::function<void()> changed) override { state_->changed = std::move(changed); }
  void stop() override { state_->changed = nullptr; }
  MicActivity read() override { return state_->activity; }

 private:
  const std::shared_ptr<MicState> state_;  // shared with the test
};

}  // namespace tobrin::testing
