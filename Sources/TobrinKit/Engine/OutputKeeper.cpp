#include "Engine/OutputKeeper.h"

#include <cassert>
#include <utility>

#include "Base/MachTime.h"

namespace tobrin {
namespace {

constexpr double retryMs = 1000;
constexpr SerialQueue::Duration fadeCheckInterval = std::chrono::milliseconds(2);
// Blocks of 8192 frames, the longest that sound servers use, take 171 ms.
constexpr SerialQueue::Duration stallLimit = std::chrono::milliseconds(200);
constexpr SerialQueue::Duration startLimit = std::chrono::milliseconds(1000);  // cards sleep deeply
constexpr uint64_t fadeFrames = 288;  // the 6 ms in which the mixer releases its voices

}  // namespace

OutputKeeper::OutputKeeper(SerialQueue& queue, std::unique_ptr<AudioOutput> audio)
    : queue_(queue), audio_(std::move(audio)) {
  assert(audio_);
}

void OutputKeeper::start() {
  assert(queue_.isCurrent());
  if (std::exchange(state_, State::playing) == State::fading) ++fadeNumber_;
  if (audio_->isRunning() || queue_.now() < retry_) return;
  if (audio_->start())
    watchFlow(startLimit);
  else
    retry_ = queue_.now() + machTicks(retryMs);
}

void OutputKeeper::expectSound() {
  if (!audio_->isRunning()) return;
  isExpecting_ = true;
  watchFlow(stallLimit);
}

void OutputKeeper::watchFlow(SerialQueue::Duration limit) {
  if (std::exchange(isWatching_, true)) return;
  queue_.after(limit, [weak = weak_from_this(), rendered = audio_->renderedFrames()] {
    if (const auto self = weak.lock()) self->checkFlow(rendered);
  });
}

// A server that goes away or a card that hangs is noticed late or not at all, and until then keys
// are pushed. They must not all sound at once when it plays again.
void OutputKeeper::checkFlow(uint64_t renderedBefore) {
  isWatching_ = false;
  const bool expecting = std::exchange(isExpecting_, false);
  if (state_ == State::paused) return;
  if (audio_->renderedFrames() == renderedBefore)
    audio_->forgetVoices();
  else if (expecting || audio_->activeVoices() > 0)
    watchFlow(stallLimit);
}

void OutputKeeper::rest() {
  assert(queue_.isCurrent());
  if (state_ != State::playing) return;
  const uint64_t fadedAt = audio_->renderedFrames() + fadeFrames;
  if (!audio_->isRunning() || !fadeOut()) {
    pause();
    return;
  }
  state_ = State::fading;
  ++fadeNumber_;
  const auto deadline = queue_.now() + static_cast<uint64_t>(fadePatience.count());
  pauseAfter({.renderedAt = fadedAt, .deadline = deadline, .isRendered = false});
}

void OutputKeeper::pauseAfter(const Fade& fade) {
  queue_.after(fadeCheckInterval, [weak = weak_from_this(), number = fadeNumber_, fade] {
    const auto self = weak.lock();
    if (self && self->fadeNumber_ == number) self->checkFade(fade);
  });
}

// A block that was rendered may still be on its way to the device; it has got there when the next
// one is asked for.
void OutputKeeper::checkFade(const Fade& fade) {
  const uint64_t rendered = audio_->renderedFrames();
  const bool arrived = rendered >= fade.renderedAt;
  if (queue_.now() >= fade.deadline || (arrived && fade.isRendered))
    pause();
  else if (arrived)
    pauseAfter({.renderedAt = rendered + 1, .deadline = fade.deadline, .isRendered = true});
  else
    pauseAfter(fade);
}

void OutputKeeper::pause() {
  assert(queue_.isCurrent());
  state_ = State::paused;
  ++fadeNumber_;
  retry_ = 0;
  audio_->pause();
  audio_->forgetVoices();
}

void OutputKeeper::restart() {
  audio_->pause();
  audio_->start();
}

bool OutputKeeper::fadeOut() {
  if (state_ != State::playing) return true;  // nothing sounds, or it fades already
  TBCommand release{};
  release.type = TB_COMMAND_RELEASE_ALL;
  return tb_mixer_push(audio_->mixer(), &release);
}

}  // namespace tobrin
