/// A motion source driven by a test.
#pragma once

#include <string>
#include <utility>

#include "Force/MotionReport.h"
#include "Force/MotionSource.h"
#include "Support/Script.h"

namespace tobrin::testing {

struct MotionScript : Script<std::pair<Acceleration, uint64_t>> {};

class ScriptedMotionSource final : public MotionSource {
 public:
  explicit ScriptedMotionSource(MotionScript& script) : script_(script) {}

  bool open() override { return script_.open(); }
  void run(const Sink& sink) override {
    script_.run([&](const auto& sample) { sink(encodeMotionReport(sample.first), sample.second); });
  }
  void close() override { script_.close(); }
  void interrupt() override { script_.interrupt(); }
  [[nodiscard]] std::string problem() const override {
    return script_.works() ? "" : "the test says no";
  }
  [[nodiscard]] std::string description() const override { return "a scripted source"; }

 private:
  MotionScript& script_;
};

}  // namespace tobrin::testing
