#include "Model/RecordingGuide.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <tuple>
#include <utility>

#include "Base/ExchangeFolders.h"
#include "Importing/PackIdentity.h"
#include "Importing/TemporaryFolder.h"
#include "Recording/KeyedPackBuilder.h"
#include "Recording/KeyedTakes.h"

namespace tobrin {

namespace {

constexpr std::chrono::milliseconds pollInterval{100};
constexpr auto defaultName = "My Keyboard";

KeyGroup groupOf(RecordingGuide::Step step) {
  using Step = RecordingGuide::Step;
  switch (step) {
    case Step::space:
      return KeyGroup::space;
    case Step::enter:
      return KeyGroup::enter;
    case Step::backspace:
      return KeyGroup::backspace;
    case Step::modifier:
      return KeyGroup::modifier;
    default:
      return KeyGroup::alpha;
  }
}

/// Runs on the queue for that.
KeyedTakes buildPack(const KeyedRecording& recording, const std::string& name,
                     const std::filesystem::path& into) {
  KeyedTakes takes = findKeyedTakes(recording);
  buildKeyedPack(takes,
                 {.id = importedId(name),
                  .name = name,
                  .kind = "Recorded",
                  .summary = "Recorded from my own keyboard",
                  .author = "",
                  .license = ""},
                 into, exchangeFolders);
  return takes;
}

}  // namespace

RecordingGuide::RecordingGuide(Services services) : services_(std::move(services)) {}

RecordingGuide::~RecordingGuide() {
  setRecorder(nullptr);
}

void RecordingGuide::begin() {
  if (stage_ != Stage::away) return;
  if (!renewRecorder()) return setStage(Stage::microphone);
  inputs_ = recorder_->inputs();
  const auto usual = std::find_if(inputs_.begin(), inputs_.end(),
                                  [](const SoundCapture::Input& input) { return input.isDefault; });
  if (usual != inputs_.end()) input_ = usual->name;
  services_.setSilent(true);
  setStage(Stage::microphone);
  record();
  poll(++round_);
}

void RecordingGuide::chooseInput(const std::string& name) {
  if (stage_ != Stage::microphone || recorder_ == nullptr) return;
  recorder_->stop();
  input_ = name;
  if (renewRecorder()) record();
}

void RecordingGuide::startTyping() {
  if (stage_ != Stage::microphone || recorder_ == nullptr) return;
  recorder_->stop();  // what was said while trying the microphone belongs to no pack
  if (!renewRecorder()) return;
  have_ = {};
  isPaused_ = !record();
  setStage(Stage::typing);
  enterStep(0);
}

void RecordingGuide::pause() {
  if (stage_ != Stage::typing || isPaused_) return;
  recorder_->stop();
  isPaused_ = true;
  emit changed();
}

void RecordingGuide::resume() {
  if (stage_ != Stage::typing || !isPaused_) return;
  isPaused_ = !record();
  emit changed();
}

void RecordingGuide::skip() {
  if (stage_ != Stage::typing) return;
  if (step_ + 1 == allSteps.size()) return finish();
  enterStep(step_ + 1);
}

void RecordingGuide::finish() {
  if (stage_ != Stage::typing) return;
  recorder_->stop();
  isPaused_ = true;
  setStage(Stage::building);
  build(defaultName, [this](const Built& built) {
    problem_ = built.problem;
    keyCount_ = built.keyCount;
    goodCount_ = built.goodCount;
    if (!problem_.empty()) return setStage(Stage::typing);
    folder_ = built.folder;
    services_.setSilent(false);
    services_.play(folder_->path() / "pack");
    setStage(Stage::listening);
  });
}

void RecordingGuide::typeMore() {
  if (stage_ != Stage::listening) return;
  services_.play({});
  services_.setSilent(true);
  isPaused_ = !record();
  setStage(Stage::typing);
}

void RecordingGuide::listen() {
  if (stage_ == Stage::listening) services_.play(folder_->path() / "pack");
}

void RecordingGuide::keep(const std::string& name) {
  if (stage_ != Stage::listening) return;
  keeping_ = Keeping::making;
  setStage(Stage::building);
  build(name.empty() ? defaultName : name, [this](const Built& built) {
    if (!built.problem.empty()) return stopKeeping(built.problem);
    problem_.clear();
    folder_ = built.folder;
    keeping_ = Keeping::adding;
    services_.keep(folder_->path() / "pack");
  });
}

void RecordingGuide::packsAdded() {
  if (keeping_ == Keeping::adding) leave();
}

void RecordingGuide::keepFailed(const std::string& reason) {
  if (keeping_ == Keeping::adding) stopKeeping(reason);
}

void RecordingGuide::stopKeeping(const std::string& problem) {
  keeping_ = Keeping::no;
  problem_ = problem;
  setStage(Stage::listening);
}

void RecordingGuide::panelClosed() {
  if (keeping_ == Keeping::no) leave();
}

void RecordingGuide::leave() {
  if (stage_ == Stage::away) return;
  ++round_;
  stopRecording();
  folder_.reset();
  keeping_ = Keeping::no;
  problem_.clear();
  live_ = {};
  services_.play({});
  services_.setSilent(false);
  setStage(Stage::away);
}

void RecordingGuide::addKey(const KeyEvent& event) {
  const MutexLock lock(lock_);
  if (recorder_ != nullptr) recorder_->addKey(event);
}

void RecordingGuide::addForce(const ForceReading& reading) {
  const MutexLock lock(lock_);
  if (recorder_ != nullptr && reading.sensed) recorder_->addForce(reading.code, reading.position);
}

std::size_t RecordingGuide::wanted(Step step) {
  switch (step) {
    case Step::soft:
    case Step::hard:
      return 20;
    case Step::usual:
      return 30;
    default:
      return 8;
  }
}

void RecordingGuide::poll(uint64_t round) {
  if (round != round_ || recorder_ == nullptr) return;
  if (stage_ == Stage::microphone || (stage_ == Stage::typing && !isPaused_)) {
    recorder_->collect();
    takeState();
    emit levelChanged();
  }
  services_.main.after(pollInterval, [this, round, alive = std::weak_ptr(alive_)] {
    if (!alive.expired()) poll(round);
  });
}

void RecordingGuide::takeState() {
  const auto shown = [this] { return std::tuple(live_.verdict, problem_, have_, step_); };
  const auto before = shown();
  live_ = recorder_->takes().state();
  problem_ = recorder_->problem();
  countTakes();
  if (shown() != before) emit changed();
}

void RecordingGuide::countTakes() {
  if (stage_ != Stage::typing) return;
  const std::size_t now = goodTakesOfStep();
  have_[step_] = now > atStepStart_ ? now - atStepStart_ : 0;
  if (have_[step_] >= wanted(step())) skip();
}

std::size_t RecordingGuide::goodTakesOfStep() const {
  std::size_t sum = 0;
  for (const std::size_t takes : live_.takes[index(groupOf(step()))])
    sum += takes;
  return sum;
}

void RecordingGuide::enterStep(std::size_t step) {
  step_ = step;
  atStepStart_ = goodTakesOfStep();
  emit changed();
}

/// Whether it records now.
bool RecordingGuide::record() {
  const bool records = recorder_->start(input_);
  problem_ = records ? std::string() : recorder_->problem();
  emit changed();
  return records;
}

void RecordingGuide::stopRecording() {
  if (recorder_ != nullptr) recorder_->stop();
  setRecorder(nullptr);
}

void RecordingGuide::build(const std::string& name, std::function<void(const Built&)> done) {
  // Works on a copy of the recording, so that the recorder may go on or go away meanwhile.
  services_.worker.async([this, &main = services_.main, name, round = round_,
                          recording = recorder_->takes().recording(), done = std::move(done),
                          alive = std::weak_ptr(alive_)] {
    Built built;
    try {
      built.folder = std::make_shared<TemporaryFolder>();
      const auto sounds = buildPack(recording, name, built.folder->path() / "pack").sounds;
      built.keyCount = sounds.size();
      built.goodCount = static_cast<std::size_t>(std::ranges::count(
          sounds, KeyFate::good, [](const KeyEventSound& sound) { return sound.fate; }));
    } catch (const std::exception& error) {
      built.problem = error.what();
    }
    main.async([this, round, built, done, alive] {
      if (!alive.expired() && round == round_) done(built);
    });
  });
}

void RecordingGuide::setStage(Stage stage) {
  stage_ = stage;
  emit changed();
}

/// False, with the problem set, where nothing can be recorded.
bool RecordingGuide::renewRecorder() {
  try {
    setRecorder(std::make_shared<KeyboardRecorder>(services_.makeCapture()));
    return true;
  } catch (const std::exception& error) {
    setRecorder(nullptr);
    problem_ = error.what();
    emit changed();
    return false;
  }
}

void RecordingGuide::setRecorder(std::shared_ptr<KeyboardRecorder> recorder) {
  const MutexLock lock(lock_);
  recorder_ = std::move(recorder);
}

}  // namespace tobrin
