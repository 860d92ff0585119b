#include "Alsa/AlsaOutput.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <span>
#include <stdexcept>
#include <utility>

#include "Alsa/AlsaCards.h"
#include "Alsa/AlsaConfiguration.h"
#include "Alsa/AlsaPcm.h"
#include "Base/Log.h"
#include "Motion/DeviceWatch.h"
#include "Threads/AsioQueue.h"
#include "Threads/ThreadPreparation.h"

namespace tobrin {

namespace {

using namespace std::chrono_literals;

constexpr auto openLimit = 500ms;
constexpr auto stallLimit = 500ms;
constexpr std::chrono::milliseconds firstRetryPause = 100ms;
constexpr std::chrono::milliseconds longestRetryPause = 1000ms;
constexpr auto forever = std::chrono::nanoseconds::max();

std::chrono::nanoseconds lengthOf(uint32_t frames) {
  return std::chrono::nanoseconds(1s) * frames / 48000;
}

/// Slows down for devices without a clock (null, file), which take everything at once.
class Pace {
 public:
  explicit Pace(const AlsaPcm& pcm) : mayBeAhead_(lengthOf(2 * pcm.bufferFrames())) {}

  /// How long to rest after writing so many frames. They are counted a little short, so that a
  /// device with a clock never has to rest here.
  std::chrono::nanoseconds restAfter(uint32_t frames) {
    const auto now = std::chrono::steady_clock::now();
    written_ = std::max(written_, now) + lengthOf(frames) * 99 / 100;
    return std::max<std::chrono::nanoseconds>(written_ - now - mayBeAhead_, 0ns);
  }

 private:
  const std::chrono::nanoseconds mayBeAhead_;
  std::chrono::steady_clock::time_point written_;  // when a true clock would have played it all
};

}  // namespace

AlsaOutput::AlsaOutput(std::string deviceName, std::function<void()> onThreadStart)
    : deviceName_(std::move(deviceName)),
      opened_(deviceName_),
      retryPause_(firstRetryPause),
      notifier_(std::make_unique<AsioQueue>("Tobrin.Notice")) {
  thread_ = std::thread([this, onStart = std::move(onThreadStart)] { run(onStart); });
}

AlsaOutput::~AlsaOutput() {
  {
    const std::lock_guard lock(mutex_);
    goal_ = Goal::quit;
  }
  wake_.raise();
  thread_.join();
  // A notice on its way may still call in here, but is not passed on.
  notifier_.reset();
}

void AlsaOutput::setCallbacks(AudioCallbacks callbacks) {
  assert(callbacks.render != nullptr);
  const std::lock_guard lock(mutex_);
  callbacks_ = std::move(callbacks);
}

void AlsaOutput::choose(const std::string& id) {
  const std::lock_guard lock(mutex_);
  if (chosen_ == id) return;
  chosen_ = id;
  reopens_ = true;
  wake_.raise();
}

void AlsaOutput::findOutputs() {
  listOutputs();
}

bool AlsaOutput::start() {
  std::unique_lock lock(mutex_);
  assert(callbacks_.render != nullptr);
  if (goal_ == Goal::quit) return false;
  if (goal_ == Goal::play && phase_ == Phase::playing) return true;
  goal_ = Goal::play;
  phase_ = Phase::opening;
  startIsAnswered_ = true;
  wake_.raise();
  phaseChanged_.wait_for(lock, openLimit, [this] { return phase_ != Phase::opening; });
  startIsAnswered_ = phase_ == Phase::playing;
  if (phase_ == Phase::opening) problem_ = "the ALSA device '" + opened_ + "' does not answer";
  return startIsAnswered_;
}

void AlsaOutput::pause() {
  std::unique_lock lock(mutex_);
  if (goal_ == Goal::quit) return;
  goal_ = Goal::pause;
  wake_.raise();
  // A device may never answer, also when another one is to be opened, or a lost one closed. Long
  // before the limit the last block has been rendered.
  if (phaseChanged_.wait_for(lock, stallLimit, [this] { return phase_ != Phase::playing; })) return;
  phase_ = Phase::idle;
  reopens_ = true;  // when it answers after all, it must not play on as if never paused
}

bool AlsaOutput::isRunning() const {
  const std::lock_guard lock(mutex_);
  return phase_ == Phase::playing && goal_ == Goal::play;
}

std::string AlsaOutput::problem() const {
  const std::lock_guard lock(mutex_);
  return problem_;
}

std::string AlsaOutput::description() const {
  const std::lock_guard lock(mutex_);
  return "ALSA, " + (outputs_.used.empty() ? deviceName_ : outputs_.used);
}

void AlsaOutput::run(const std::function<void()>& onThreadStart) {
  nameThisThread("Tobrin.Audio");
  if (onThreadStart) onThreadStart();

  for (Goal goal = goal_; goal != Goal::quit; goal = goal_) {
    std::array waitingFor = {pollfd{wake_.fd(), POLLIN, 0}};
    if (goal == Goal::pause) {
      retryPause_ = firstRetryPause;
      fallAsleep();
      sleep(waitingFor, forever);
    } else if (!playOnce()) {
      sleep(waitingFor, retryPause_);
      retryPause_ = std::min(retryPause_ * 2, longestRetryPause);
    }
  }
}

bool AlsaOutput::playOnce() {
  try {
    const auto pcm = open();
    left_.resize(pcm->periodFrames());
    right_.resize(pcm->periodFrames());
    retryPause_ = firstRetryPause;
    succeeded(pcm->output());
    play(*pcm);
    return true;
  } catch (const std::runtime_error& error) {
    failed(error.what());
    return false;
  }
}

std::unique_ptr<AlsaPcm> AlsaOutput::open() {
  reopens_ = false;
  std::string chosen;
  {
    const std::lock_guard lock(mutex_);
    chosen = chosen_;
    isStandIn_ = false;
  }
  if (chosen.empty() || leadsToServer()) return open(deviceName_);
  try {
    return open(chosen);
  } catch (const std::runtime_error& error) {
    const std::lock_guard lock(mutex_);
    isStandIn_ = true;
    if (std::exchange(refusal_, error.what()) != error.what())
      logLine(refusal_ + "; the default device stands in");
  }
  return open(deviceName_);
}

std::unique_ptr<AlsaPcm> AlsaOutput::open(const std::string& name) {
  {
    const std::lock_guard lock(mutex_);
    opened_ = name;
  }
  return std::make_unique<AlsaPcm>(name);
}

void AlsaOutput::play(AlsaPcm& pcm) {
  DeviceWatch cards("sound");
  std::vector<pollfd> waitingFor = {{wake_.fd(), POLLIN, 0}, {cards.fd(), POLLIN, 0}};
  const auto devices = pcm.pollDescriptors();
  waitingFor.insert(waitingFor.end(), devices.begin(), devices.end());
  const std::span device = std::span(waitingFor).subspan(2);
  Pace pace(pcm);
  while (goesOn()) {
    for (uint32_t room = pcm.room(); room > 0 && goesOn(); room = pcm.room()) {
      const uint32_t frames = std::min(room, pcm.periodFrames());
      fill(pcm, frames);
      sleep(std::span(waitingFor).first(1), pace.restAfter(frames));
      // Room for less than a whole period waits.
      if (room - frames < pcm.periodFrames()) break;
    }
    do {
      if (!sleep(waitingFor, stallLimit)) pcm.giveUp("takes no more sound");
      if (waitingFor[1].revents != 0) {
        cards.note();
        listOutputs();
      }
    } while (goesOn() && !pcm.isReady(device));
  }
  playOut(pcm);
}

// Closing the device would drop what it has not played yet. Nothing is rendered any more, so
// `pause` need not wait for this.
void AlsaOutput::playOut(AlsaPcm& pcm) {
  fallAsleep();
  std::array waitingFor = {pollfd{wake_.fd(), POLLIN, 0}};
  wake_.clear();
  if (goal_ == Goal::pause) sleep(waitingFor, lengthOf(pcm.bufferFrames() - pcm.room()));
}

void AlsaOutput::fill(AlsaPcm& pcm, uint32_t frames) {
  float* right = pcm.isStereo() ? right_.data() : nullptr;
  callbacks_.render(callbacks_.context, left_.data(), right, frames);
  const std::span<const float> second = pcm.isStereo() ? right_ : std::span<const float>();
  pcm.write(std::span(left_).first(frames), second.first(pcm.isStereo() ? frames : 0));
}

bool AlsaOutput::sleep(std::span<pollfd> waitingFor, std::chrono::nanoseconds longest) {
  if (longest == std::chrono::nanoseconds::zero()) return true;
  timespec limit{};
  limit.tv_sec = static_cast<time_t>(longest.count() / 1'000'000'000);
  limit.tv_nsec = static_cast<long>(longest.count() % 1'000'000'000);
  const bool isForever = longest == forever;
  const int ready =
      ppoll(waitingFor.data(), waitingFor.size(), isForever ? nullptr : &limit, nullptr);
  if (ready > 0 && waitingFor[0].revents != 0) wake_.clear();
  return ready != 0;  // also when a signal came in between
}

void AlsaOutput::fallAsleep() {
  const std::lock_guard lock(mutex_);
  if (goal_ != Goal::pause) return;
  phase_ = Phase::idle;
  phaseChanged_.notify_all();
}

void AlsaOutput::succeeded(const std::string& output) {
  const std::lock_guard lock(mutex_);
  if (goal_ != Goal::play) return;  // nobody waits for it any more
  phase_ = Phase::playing;
  outputs_.used = output;
  if (isListed_)
    tellOutputs();
  else
    listOutputs();
  problem_.clear();
  if (!startIsAnswered_) notifyChanged();
  phaseChanged_.notify_all();
}

void AlsaOutput::failed(const std::string& problem) {
  const std::lock_guard lock(mutex_);
  if (phase_ == Phase::playing) notifyChanged();
  phase_ = Phase::failed;
  problem_ = problem;
  startIsAnswered_ = false;
  phaseChanged_.notify_all();
}

// Off the rendering thread: asking the cards takes longer than it has time.
void AlsaOutput::listOutputs() {
  notifier_->async(
      [this] { outputsListed(leadsToServer() ? std::vector<SoundOutput>() : alsaCardOutputs()); });
}

// Where a sound server runs, the cards belong to it, and its mixer says which one plays.
bool AlsaOutput::leadsToServer() const {
  readAlsaConfigurationAgain();  // the server may have been started since
  return alsaDeviceLeadsTo("pulse", deviceName_) || alsaDeviceLeadsTo("jack", deviceName_);
}

void AlsaOutput::outputsListed(std::vector<SoundOutput> present) {
  const std::lock_guard lock(mutex_);
  outputs_.present = std::move(present);
  isListed_ = true;
  tellOutputs();
  const bool isBack = std::ranges::any_of(
      outputs_.present, [this](const SoundOutput& output) { return output.id == chosen_; });
  if (!isStandIn_ || !isBack) return;
  reopens_ = true;
  wake_.raise();
}

void AlsaOutput::tellOutputs() {
  if (callbacks_.outputsChanged) callbacks_.outputsChanged(outputs_);
}

void AlsaOutput::notifyChanged() {
  notifier_->async([this] {
    if (goal_ != Goal::quit) callbacks_.changed();
  });
}

}  // namespace tobrin
