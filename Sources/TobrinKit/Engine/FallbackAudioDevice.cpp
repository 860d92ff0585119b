#include "Engine/FallbackAudioDevice.h"

#include <algorithm>
#include <cassert>

namespace tobrin {

FallbackAudioDevice::FallbackAudioDevice(std::unique_ptr<AudioDevice> preferred, Maker makeFallback,
                                         std::function<bool()> mayFallBack)
    : makeFallback_(std::move(makeFallback)), mayFallBack_(std::move(mayFallBack)) {
  assert(preferred != nullptr && makeFallback_ && mayFallBack_);
  preferred_.device = std::move(preferred);
}

FallbackAudioDevice::~FallbackAudioDevice() {
  {
    const std::lock_guard lock(mutex_);
    isClosing_ = true;
  }
  // A notice on its way may still call in here, but is not passed on.
  preferred_.device.reset();
  fallback_.device.reset();
}

void FallbackAudioDevice::setCallbacks(AudioCallbacks callbacks) {
  assert(callbacks.render != nullptr && callbacks.changed);
  callbacks_ = std::move(callbacks);
  preferred_.device->setCallbacks(preferred_.callbacks());
}

bool FallbackAudioDevice::start() {
  assert(callbacks_.render != nullptr);
  const std::lock_guard lock(mutex_);
  if (isClosing_) return false;
  if (preferred_.device->start()) {
    leaveFallback();
    return true;
  }
  return mayFallBack_() && takeFallback() && fallback_.device->start();
}

void FallbackAudioDevice::pause() {
  const std::lock_guard lock(mutex_);
  if (isClosing_) return;
  preferred_.device->pause();
  if (fallback_.device != nullptr) fallback_.device->pause();
}

bool FallbackAudioDevice::isRunning() const {
  const std::lock_guard lock(mutex_);
  return inCharge().isRunning();
}

std::string FallbackAudioDevice::problem() const {
  const std::lock_guard lock(mutex_);
  std::string first = preferred_.device->problem();
  if (!fallback_.isInCharge) return first;
  const std::string second = fallback_.device->problem();
  return second.empty() ? second : first + ", and " + second;
}

std::string FallbackAudioDevice::description() const {
  const std::lock_guard lock(mutex_);
  return inCharge().description();
}

void FallbackAudioDevice::choose(const std::string& id) {
  const std::lock_guard lock(mutex_);
  chosen_ = id;
  preferred_.device->choose(id);
  if (fallback_.device != nullptr) fallback_.device->choose(id);
}

void FallbackAudioDevice::findOutputs() {
  const std::lock_guard lock(mutex_);
  preferred_.device->findOutputs();
  // Perhaps nothing was played yet that would have shown which of the two works.
  if (!preferred_.device->isRunning() && mayFallBack_()) takeFallback();
  if (fallback_.device != nullptr) fallback_.device->findOutputs();
}

bool FallbackAudioDevice::takeFallback() {
  if (fallback_.device == nullptr) {
    fallback_.device = makeFallback_();
    if (fallback_.device == nullptr) return false;
    fallback_.device->setCallbacks(fallback_.callbacks());
    fallback_.device->choose(chosen_);
  }
  // The preferred device goes on trying; should it run, it is silent until it is in charge.
  preferred_.isInCharge = false;
  if (!fallback_.isInCharge.exchange(true)) tellOutputs(fallback_);
  return true;
}

void FallbackAudioDevice::leaveFallback() {
  if (!fallback_.isInCharge) return;
  fallback_.device->pause();
  fallback_.isInCharge = false;
  preferred_.isInCharge = true;
  tellOutputs(preferred_);
}

void FallbackAudioDevice::sideChanged(Side& side) {
  {
    const std::lock_guard lock(mutex_);
    if (isClosing_) return;
    if (&side == &preferred_ && preferred_.device->isRunning()) leaveFallback();
    if (!side.isInCharge) return;
  }
  callbacks_.changed();
}

void FallbackAudioDevice::outputsChanged(Side& side, const SoundOutputs& outputs) {
  {
    const std::lock_guard lock(outputsMutex_);
    side.outputs = outputs;
  }
  if (side.isInCharge) tellOutputs(side);
}

void FallbackAudioDevice::tellOutputs(const Side& side) {
  const std::lock_guard lock(outputsMutex_);  // also while telling, so that the last is the newest
  if (callbacks_.outputsChanged) callbacks_.outputsChanged(side.outputs);
}

const AudioDevice& FallbackAudioDevice::inCharge() const {
  return fallback_.isInCharge ? *fallback_.device : *preferred_.device;
}

AudioCallbacks FallbackAudioDevice::Side::callbacks() {
  return {.render = render,
          .context = this,
          .changed = [this] { owner->sideChanged(*this); },
          .outputsChanged = [this](const SoundOutputs& now) { owner->outputsChanged(*this, now); }};
}

void FallbackAudioDevice::Side::render(void* self, float* left, float* right,
                                       uint32_t frames) noexcept {
  const auto& side = *static_cast<const Side*>(self);
  // Pairs with the store that hands over the charge once the other side's callbacks have ended.
  if (side.isInCharge.load(std::memory_order_acquire)) {
    side.owner->callbacks_.render(side.owner->callbacks_.context, left, right, frames);
    return;
  }
  std::fill_n(left, frames, 0.0F);
  if (right != nullptr) std::fill_n(right, frames, 0.0F);
}

}  // namespace tobrin
