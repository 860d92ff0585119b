/// A microphone that hears what a test puts in.
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Recording/SoundCapture.h"

namespace tobrin::testing {

struct CaptureScript {
  struct Block {
    int64_t time;
    std::vector<float> stereo;
  };
  std::deque<Block> blocks;  ///< not yet taken
  std::vector<SoundCapture::Input> inputs;
  std::string problem;  ///< why it does not start; empty: it does
  std::string input;    ///< the one that runs; empty: none

  /// The same on both channels.
  void hear(int64_t time, const std::vector<float>& mono) {
    Block block{time, {}};
    for (const float sample : mono)
      block.stereo.insert(block.stereo.end(), {sample, sample});
    blocks.push_back(std::move(block));
  }
};

class ScriptedCapture final : public SoundCapture {
 public:
  explicit ScriptedCapture(std::shared_ptr<CaptureScript> script) : script_(std::move(script)) {}
  ~ScriptedCapture() override { script_->input.clear(); }

  [[nodiscard]] std::vector<Input> inputs() override { return script_->inputs; }
  bool start(const std::string& input) override {
    if (script_->problem.empty()) script_->input = input;
    return script_->problem.empty();
  }
  void stop() override { script_->input.clear(); }
  void take(const std::function<void(const Block&)>& receive) override {
    for (; !script_->blocks.empty(); script_->blocks.pop_front())
      receive({script_->blocks.front().time, script_->blocks.front().stereo});
  }
  [[nodiscard]] std::string problem() const override { return script_->problem; }
  [[nodiscard]] std::string description() const override { return script_->input; }

 private:
  const std::shared_ptr<CaptureScript> script_;  // shared with the test
};

}  // namespace tobrin::testing
