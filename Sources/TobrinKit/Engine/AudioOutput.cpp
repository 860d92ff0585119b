#include "Engine/AudioOutput.h"

#include <cassert>
#include <cstdlib>
#include <utility>

#include "Base/Log.h"

namespace tobrin {
namespace {

TBMixer* makeMixer() {
  TBMixer* const mixer = tb_mixer_create(static_cast<float>(AudioOutput::sampleRate),
                                         AudioOutput::crossfadeMilliseconds);
  if (mixer == nullptr) {
    logLine("no memory for the voice mixer");
    std::abort();
  }
  return mixer;
}

}  // namespace

AudioOutput::AudioOutput(std::unique_ptr<AudioDevice> device,
                         std::function<void(const SoundOutputs&)> onOutputs)
    : mixer_(makeMixer()), device_(std::move(device)) {
  assert(device_);
  device_->setCallbacks({.render = &render,
                         .context = mixer_,
                         .changed = [this] { deviceChanged(); },
                         .outputsChanged = std::move(onOutputs)});
}

AudioOutput::~AudioOutput() {
  pause();
  // Until the device is gone it may still call `deviceChanged`, which then starts nothing.
  device_.reset();
  tb_mixer_destroy(mixer_);
}

void AudioOutput::render(void* mixer, float* left, float* right, uint32_t frames) noexcept {
  if (left != nullptr) tb_mixer_render(static_cast<TBMixer*>(mixer), left, right, frames);
}

bool AudioOutput::start() {
  MutexLock lock(mutex_);
  isWanted_ = true;
  return (isRunning() && device_->isRunning()) || startLocked();
}

bool AudioOutput::startLocked() {
  // Orders nothing: what a reader does next does not depend on what the writer did before.
  isRunning_.store(false, std::memory_order_relaxed);
  const bool runs = device_->start();
  isRunning_.store(runs, std::memory_order_relaxed);
  tellProblem(runs ? std::string() : device_->problem());
  return runs;
}

void AudioOutput::tellProblem(std::string problem) {
  if (toldProblem_ == problem) return;
  if (!problem.empty()) logLine("audio engine failed to start: " + problem);
  toldProblem_ = std::move(problem);
  if (onProblem_) onProblem_(*toldProblem_);
}

void AudioOutput::setOnProblem(std::function<void(const std::string& problem)> onProblem) {
  MutexLock lock(mutex_);
  onProblem_ = std::move(onProblem);
}

void AudioOutput::pause() {
  MutexLock lock(mutex_);
  if (isWanted_) device_->pause();
  isWanted_ = false;
  isRunning_.store(false, std::memory_order_relaxed);
}

// A device that could not start calls this, too, once it can.
void AudioOutput::deviceChanged() {
  MutexLock lock(mutex_);
  if (isWanted_ && startLocked() && onProblem_) onProblem_("");
}

void AudioOutput::choose(const std::string& id) {
  MutexLock lock(mutex_);
  device_->choose(id);
}

void AudioOutput::findOutputs() {
  MutexLock lock(mutex_);
  device_->findOutputs();
}

void AudioOutput::forgetVoices() {
  tb_mixer_forget(mixer_);
  MutexLock lock(mutex_);
  if (isWanted_) return;  // the render thread has the mixer and begins its next block with it
  float unheard = 0;
  tb_mixer_render(mixer_, &unheard, nullptr, 0);
}

bool AudioOutput::isRunning() const {
  return isRunning_.load(std::memory_order_relaxed);
}

std::string AudioOutput::problem() const {
  return device_->problem();
}

std::string AudioOutput::description() const {
  return device_->description();
}

float AudioOutput::volume() const {
  return tb_mixer_get_master(mixer_);
}

void AudioOutput::setVolume(float gain) {
  tb_mixer_set_master(mixer_, gain);
}

uint64_t AudioOutput::startedVoices() const {
  return tb_mixer_started_voices(mixer_);
}

uint32_t AudioOutput::activeVoices() const {
  return tb_mixer_active_voices(mixer_);
}

uint64_t AudioOutput::renderedFrames() const {
  return tb_mixer_rendered_frames(mixer_);
}

uint64_t AudioOutput::droppedCommands() const {
  return tb_mixer_dropped_commands(mixer_);
}

}  // namespace tobrin
