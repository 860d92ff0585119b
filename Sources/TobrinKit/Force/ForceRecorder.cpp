#include "Force/ForceRecorder.h"

#include <array>
#include <utility>

#include "Base/Key.h"
#include "Input/KeyLayout.h"

namespace tobrin {

/// Gives a source's reports to the recorder: of the sensor, only its thread is of use here.
class ForceRecorder::Tap final : public MotionSource {
 public:
  Tap(std::unique_ptr<MotionSource> source, ForceRecorder& recorder)
      : source_(std::move(source)), recorder_(recorder) {}

  bool open() override { return source_->open(); }
  void run(const Sink& /*of the sensor*/) override {
    source_->run([this](std::span<const uint8_t> report, uint64_t time) {
      recorder_.addSample(report, time);
    });
  }
  void close() override { source_->close(); }
  void interrupt() override { source_->interrupt(); }
  [[nodiscard]] std::string problem() const override { return source_->problem(); }
  [[nodiscard]] std::string description() const override { return source_->description(); }

 private:
  std::unique_ptr<MotionSource> source_;
  ForceRecorder& recorder_;
};

ForceRecorder::ForceRecorder(std::unique_ptr<MotionSource> source, const Listen& listen,
                             std::function<void()> onThreadStart)
    : sensor_(std::make_unique<Tap>(std::move(source), *this), std::move(onThreadStart)),
      monitor_(listen([this](const KeyEvent& event) { addKey(event); })) {}

ForceRecorder::~ForceRecorder() {
  stop();
}

bool ForceRecorder::start() {
  if (!sensor_.start()) {
    problem_ = sensor_.problem();
    return false;
  }
  if (monitor_->start()) return true;
  problem_ = monitor_->problem();
  sensor_.stop();
  return false;
}

void ForceRecorder::stop() {
  monitor_->stop();
  sensor_.stop();
}

ForceRecorder::Recorded ForceRecorder::take() {
  MutexLock lock(lock_);
  return std::exchange(waiting_, {});
}

void ForceRecorder::addSample(std::span<const uint8_t> report, uint64_t time) {
  const auto acceleration = decodeMotionReport(report);
  if (!acceleration) return;
  MutexLock lock(lock_);
  if (time < lastTime_) return;  // a trace's times never go back
  lastTime_ = time;
  waiting_.samples.push_back({time, *acceleration});
}

void ForceRecorder::addKey(const KeyEvent& event) {
  if (event.action != KeyAction::down) return;
  MutexLock lock(lock_);
  waiting_.keys.push_back({event.time, representative(event.code)});
}

uint16_t ForceRecorder::representative(uint16_t code) {
  constexpr std::array<Key, allKeyGroups.size()> keys = {Key::a, Key::space, Key::enter,
                                                         Key::backspace, Key::leftShift};
  return codeOf(keys[index(keyGroupOf(code))]);
}

}  // namespace tobrin
