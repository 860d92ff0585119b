#include "Recording/KeyboardRecorder.h"

#include <algorithm>
#include <utility>

namespace tobrin {

namespace {

constexpr double rate = SoundCapture::rate;
constexpr std::size_t channels = 2;
constexpr std::size_t keysToChoose = 8;
constexpr double secondsToChoose = 30;
constexpr int64_t forcePatience = 100'000'000;    // ns
constexpr int64_t silenceForPause = 500'000'000;  // ns, so that sounds of before end in it

}  // namespace

KeyboardRecorder::KeyboardRecorder(std::unique_ptr<SoundCapture> capture)
    : capture_(std::move(capture)),
      takes_(rate),
      gaps_(rate, channels, [this](std::span<const float> sound) { addSound(sound); }),
      choice_(rate) {}

KeyboardRecorder::~KeyboardRecorder() {
  capture_->stop();
}

bool KeyboardRecorder::start(const std::string& input) {
  isResuming_ = true;
  if (!capture_->start(input)) return false;
  const MutexLock lock(lock_);
  isRecording_ = true;
  return true;
}

void KeyboardRecorder::stop() {
  capture_->stop();
  {
    const MutexLock lock(lock_);
    isRecording_ = false;
  }
  collect();
  gaps_.flush();
  addWaitingKeys(gaps_.dueTime());
  if (!isChosen_ && !undecided_.empty()) chooseChannel();
}

void KeyboardRecorder::addKey(const KeyEvent& event) {
  const MutexLock lock(lock_);
  if (isRecording_) waiting_.push_back({event, std::nullopt});
}

void KeyboardRecorder::addForce(uint16_t code, float position) {
  const MutexLock lock(lock_);
  const auto press = std::find_if(waiting_.rbegin(), waiting_.rend(), [&](const Waiting& key) {
    return key.event.code == code && key.event.action == KeyAction::down;
  });
  if (press != waiting_.rend()) press->force = position;
}

void KeyboardRecorder::collect() {
  capture_->take([this](const SoundCapture::Block& block) { addBlock(block); });
  collectKeys();
}

void KeyboardRecorder::addBlock(const SoundCapture::Block& block) {
  if (std::exchange(isResuming_, false) && gaps_.firstTime())
    leftOut_ = block.time - gaps_.dueTime() - silenceForPause;
  gaps_.add(block.time - leftOut_, block.interleaved);
}

void KeyboardRecorder::collectKeys() {
  // Keys wait until there is sound, since their times count from its start, and then until their
  // force is measured.
  if (gaps_.firstTime() && !isResuming_) addWaitingKeys(gaps_.dueTime() - forcePatience);
}

/// Those of before that time of the recording's.
void KeyboardRecorder::addWaitingKeys(int64_t until) {
  const std::optional<int64_t> start = gaps_.firstTime();
  if (!start) return;
  if (!numbers_) numbers_.emplace(static_cast<uint64_t>(*start));
  std::vector<Waiting> keys;
  {
    const MutexLock lock(lock_);
    const auto isLater = [&](const Waiting& key) {
      return static_cast<int64_t>(key.event.time) - leftOut_ > until;
    };
    const auto later = std::find_if(waiting_.begin(), waiting_.end(), isLater);
    keys.assign(waiting_.begin(), later);
    waiting_.erase(waiting_.begin(), later);
  }
  for (auto& [event, force] : keys) {
    event.time -= static_cast<uint64_t>(leftOut_);
    const std::optional<RecordedKey> key = numbers_->recorded(event, force);
    if (!key || key->time < 0) continue;
    if (key->action == KeyAction::down) ++keyCount_;
    takes_.addKey(*key);
  }
}

void KeyboardRecorder::addSound(std::span<const float> interleaved) {
  addChannel(interleaved);
  if (isChosen_) return;
  choice_.add(interleaved);
  undecided_.insert(undecided_.end(), interleaved.begin(), interleaved.end());
  const std::size_t frames = undecided_.size() / channels;
  const double seconds = static_cast<double>(frames) / rate;
  if (keyCount_ >= keysToChoose || seconds >= secondsToChoose) chooseChannel();
}

void KeyboardRecorder::chooseChannel() {
  isChosen_ = true;
  const std::vector<float> sound = std::exchange(undecided_, {});
  if (choice_.better() == channel_) return;
  channel_ = choice_.better();
  const std::vector<RecordedKey> keys = takes_.recording().keys;
  takes_ = LiveTakes(rate);
  addChannel(sound);
  for (const RecordedKey& key : keys)
    takes_.addKey(key);
}

void KeyboardRecorder::addChannel(std::span<const float> interleaved) {
  std::vector<float> mono;
  mono.reserve(interleaved.size() / channels);
  for (std::size_t index = channel_; index < interleaved.size(); index += channels)
    mono.push_back(interleaved[index]);
  takes_.addSound(mono);
}

}  // namespace tobrin
