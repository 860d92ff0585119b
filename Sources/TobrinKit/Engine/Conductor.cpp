#include "Engine/Conductor.h"

#include <utility>

#include "Engine/ConductorCore.h"

namespace tobrin {

Conductor::Conductor(SerialQueue& queue, std::unique_ptr<AudioOutput> audio,
                     std::unique_ptr<ForceSensor> sensor)
    : queue_(queue),
      core_(std::make_shared<ConductorCore>(queue, std::move(audio), std::move(sensor))) {}

Conductor::~Conductor() {
  queue_.sync([this] {
    core_->shutdown();
    core_->setOnForce(nullptr);
    core_->setOnForceStage(nullptr);
    core_->setOnSensorProblem(nullptr);
  });
}

void Conductor::setOnForce(ForceCallback onForce) {
  queue_.async([core = core_, callback = std::move(onForce)] { core->setOnForce(callback); });
}

void Conductor::setOnForceStage(ForceStageCallback onStage) {
  queue_.async([core = core_, callback = std::move(onStage)] { core->setOnForceStage(callback); });
}

void Conductor::setOnSensorProblem(SensorProblemCallback onProblem) {
  queue_.async([core = core_, call = std::move(onProblem)] { core->setOnSensorProblem(call); });
}

void Conductor::handle(const KeyEvent& event) {
  queue_.async([core = core_, event] { core->handle(event); });
}

void Conductor::apply(const EngineSettings& settings, bool wakeNow) {
  queue_.async([core = core_, settings, wakeNow] { core->apply(settings, wakeNow); });
}

void Conductor::setMasked(bool masked) {
  queue_.async([core = core_, masked] { core->setMasked(masked); });
}

void Conductor::setBoost(float boost) {
  queue_.async([core = core_, boost] { core->setBoost(boost); });
}

void Conductor::chooseOutput(const std::string& id) {
  queue_.async([core = core_, id] { core->chooseOutput(id); });
}

void Conductor::findOutputs() {
  queue_.async([core = core_] { core->findOutputs(); });
}

void Conductor::setPack(std::shared_ptr<const LoadedPack> pack) {
  queue_.async([core = core_, loaded = std::move(pack)] { core->setPack(loaded); });
}

void Conductor::demonstrateKey() {
  queue_.async([core = core_] { core->demonstrateKey(); });
}

void Conductor::audition() {
  queue_.async([core = core_] { core->audition(); });
}

void Conductor::resetCalibration() {
  queue_.async([core = core_] { core->resetCalibration(); });
}

void Conductor::systemDidWake() {
  queue_.async([core = core_] { core->systemDidWake(); });
}

void Conductor::shutdown() {
  queue_.sync([this] { core_->shutdown(); });
}

bool Conductor::forceSensingAvailable() const {
  return core_->devices().sensor() != nullptr;
}

const AudioOutput& Conductor::audio() const {
  return core_->devices().audio();
}

}  // namespace tobrin
