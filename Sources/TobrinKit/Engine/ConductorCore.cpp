#include "Engine/ConductorCore.h"

#include <algorithm>
#include <cassert>
#include <chrono>
#include <utility>

#include "Base/Key.h"
#include "Base/MouseButton.h"
#include "Engine/Conductor.h"

namespace tobrin {
namespace {

constexpr uint64_t jitterSeed = 0x74726962;

template <typename Rep, typename Period>
SerialQueue::Duration ticks(std::chrono::duration<Rep, Period> duration) {
  return std::chrono::duration_cast<SerialQueue::Duration>(duration);
}

}  // namespace

ConductorCore::ConductorCore(SerialQueue& queue, std::unique_ptr<AudioOutput> audio,
                             std::unique_ptr<ForceSensor> sensor)
    : queue_(queue),
      devices_(std::make_shared<EngineDevices>(queue, std::move(audio), std::move(sensor))),
      player_(devices_->audio(), settings_),
      rng_(jitterSeed) {
  devices_->watchIdleness();
}

/// Runs `task` on this object later, if it still exists.
template <typename Task>
void ConductorCore::after(SerialQueue::Duration delay, Task task) {
  queue_.after(delay, [weak = weak_from_this(), run = std::move(task)] {
    if (const auto self = weak.lock()) run(*self);
  });
}

void ConductorCore::handle(const KeyEvent& event) {
  assert(queue_.isCurrent());
  if (event.action == KeyAction::down)
    keyDown(event);
  else
    keyUp(event);
}

void ConductorCore::keyDown(const KeyEvent& event) {
  held_.release(event.code);  // its key-up was lost
  if (!settings_.enabled || !player_.hasPack()) return;
  devices_->noteActivity(event.time);
  wake();
  if (isMouse(event.code))
    click(event);
  else if (settings_.forceSensing && devices_->sensing().canSense())
    strikeSensed(event);
  else
    strikeFixed(event);
}

void ConductorCore::strikeSensed(const KeyEvent& event) {
  const StrokeMeter::Reading reading =
      meter_.provisional(*devices_->sensor(), event.time, queue_.now());
  const StrokeStrength strength = reading.strength.value_or(meter_.typical());
  const StrokeVariation variation = StrokeVariation::draw(rng_);
  const VoicePlayer::Voice voice = player_.press(event.code, strength, variation);
  if (voice.tag == 0) return;
  showStage(event, 0, reading);
  held_.press(event.code, voice.tag);
  for (const double delay : Conductor::refineAtMs) {
    after(ticks(std::chrono::duration<double, std::milli>(delay)),
          [stroke = Stroke{voice, event, variation.gain}, delay](ConductorCore& self) {
            self.refine(stroke, delay);
          });
  }
}

StrokeStrength ConductorCore::near(Tier tier) {
  const double center = static_cast<double>(index(tier));
  return {static_cast<float>(std::clamp(center + 0.3 * rng_.signedUnit(), 0.0, 3.0)), 1};
}

void ConductorCore::strikeFixed(const KeyEvent& event) {
  const StrokeStrength strength = near(settings_.fixedTier);
  const VoicePlayer::Voice voice = player_.press(event.code, strength, {});
  if (voice.tag == 0) return;
  held_.press(event.code, voice.tag);
  report({.code = event.code, .position = strength.position});
}

/// A mouse lies beside the machine, where no sensor feels it.
void ConductorCore::click(const KeyEvent& event) {
  const bool isWheel = event.code == codeOf(MouseButton::wheel);
  player_.press(event.code, near(isWheel ? Tier::soft : settings_.fixedTier), {});
}

void ConductorCore::refine(const Stroke& stroke, double delayMs) {
  if (!player_.hasPack()) return;
  const auto reading = meter_.read(*devices_->sensor(), stroke.event.time, queue_.now());
  if (reading.strength) player_.reweigh(stroke.voice, *reading.strength, stroke.gain);
  if (reading.window && delayMs == Conductor::refineAtMs.back()) settle(stroke, reading);
  showStage(stroke.event, delayMs, reading);
}

void ConductorCore::settle(const Stroke& stroke, const StrokeMeter::Reading& reading) {
  const bool sensed = reading.strength.has_value();
  if (sensed) meter_.learn(reading);
  const StrokeStrength strength = reading.strength.value_or(meter_.typical());
  held_.measure(stroke.event.code, stroke.voice.tag, strength.relative);
  report({stroke.event.code, strength.position, strength.relative, reading.window->peak, sensed});
}

void ConductorCore::showStage(const KeyEvent& event, double delayMs,
                              const StrokeMeter::Reading& reading) const {
  if (!onStage_) return;
  const StrokeStrength strength = reading.strength.value_or(meter_.typical());
  onStage_({event.code, event.time, delayMs, reading.window, reading.noise,
            reading.strength.has_value(), strength.relative, strength.position, meter_.reference(),
            meter_.typical().position});
}

void ConductorCore::keyUp(const KeyEvent& event) {
  constexpr float unknown = 1;
  const float relative = held_.release(event.code).value_or(unknown);
  playRelease(event.code, relative);
}

void ConductorCore::playRelease(uint16_t code, float relative) {
  if (!settings_.enabled || !settings_.releaseSounds || devices_->isSuspended()) return;
  devices_->wake();
  player_.release(code, relative, rng_);
}

void ConductorCore::apply(const EngineSettings& settings, bool wakeNow) {
  assert(queue_.isCurrent());
  const EngineSettings old = std::exchange(settings_, settings);
  meter_.setSensitivity(settings.sensitivity);
  devices_->audio().setVolume(settings.volume);
  if (!settings.enabled) {
    suspend();
    return;
  }
  if (!settings.forceSensing) devices_->sensing().stop();
  if (settings.forceSensing && !old.forceSensing && !devices_->isSuspended())
    devices_->sensing().start();
  if (wakeNow) wake();
}

void ConductorCore::wake() {
  devices_->wake();
  if (settings_.forceSensing) devices_->sensing().start();
}

void ConductorCore::suspend() {
  ++phrase_;
  devices_->suspend();
  held_.clear();
}

void ConductorCore::shutdown() {
  suspend();
  devices_->shutdown();
}

void ConductorCore::setPack(std::shared_ptr<const LoadedPack> pack) {
  assert(queue_.isCurrent());
  ++phrase_;
  retire(player_.exchangePack(std::move(pack)));
}

// The render thread plays from the old pack's memory until the fade has ended there. On a running
// output that takes some milliseconds; on a stalled one the count of frames shows that it has not.
void ConductorCore::retire(std::shared_ptr<const LoadedPack> pack) {
  constexpr uint64_t fadeFrames = 24000;  // a block in flight and the fade, however long blocks are
  const bool fading = devices_->fadeOut();
  const uint64_t fadedAt = devices_->audio().renderedFrames() + fadeFrames;
  if (pack) dropWhenFaded(std::move(pack), fading, fadedAt);
}

void ConductorCore::dropWhenFaded(std::shared_ptr<const LoadedPack> pack, bool fading,
                                  uint64_t fadedAt) {
  after(std::chrono::seconds(2), [pack = std::move(pack), fading, fadedAt](ConductorCore& self) {
    if (self.devices_->isAtRest()) return;  // no voice is left
    if (!fading)
      self.retire(pack);
    else if (self.devices_->audio().renderedFrames() < fadedAt)
      self.dropWhenFaded(pack, fading, fadedAt);
  });
}

void ConductorCore::audition() {
  if (settings_.enabled && player_.hasPack()) return play(demonstrationPhrase(rng_));
  play({});
}

void ConductorCore::demonstrateKey() {
  play({PhraseKey{.code = codeOf(Key::j)}});  // in the middle
}

void ConductorCore::play(const std::vector<PhraseKey>& phrase) {
  assert(queue_.isCurrent());
  if (!settings_.enabled) return;
  wake();
  ++phrase_;
  if (!player_.hasPack()) return;
  for (const PhraseKey& key : phrase) {
    inPhrase(key.press, [key](ConductorCore& self) { self.strikeDemonstrated(key); });
    inPhrase(key.press + phraseKeyHeld,
             [code = key.code](ConductorCore& self) { self.playRelease(code, 1); });
  }
}

/// Runs `task` later, if the present phrase still plays.
template <typename Task>
void ConductorCore::inPhrase(PhraseKey::Seconds delay, Task task) {
  after(ticks(delay), [phrase = phrase_, run = std::move(task)](ConductorCore& self) {
    if (self.phrase_ == phrase) run(self);
  });
}

void ConductorCore::strikeDemonstrated(const PhraseKey& key) {
  devices_->noteActivity(queue_.now());
  devices_->wake();
  player_.press(key.code, {key.position, 1}, {});
}

void ConductorCore::report(const ForceReading& reading) const {
  if (onForce_) onForce_(reading);
}

}  // namespace tobrin
