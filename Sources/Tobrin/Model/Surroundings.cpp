#include "Model/Surroundings.h"

#include <utility>

namespace tobrin {

Surroundings::Surroundings(Services&& services, bool micInUse)
    : workspace_(services.workspace),
      mic_(services.micQueue, services.main, std::move(services.micSource)),
      quietApps_(std::move(services.frontWindow), std::move(services.describeApp), services.main,
                 {.onCause = [this] { emit quietChanged(); },
                  .onCandidate = [this] { emit candidateChanged(); }}),
      micInUse_(micInUse) {
  mic_.setOnChange([this](bool inUse) { micChanged(inUse); });
  mic_.setOnOutputRecorded([this](bool isRecorded) { recordedChanged(isRecorded); });
}

Surroundings::~Surroundings() {
  workspace_.setOnLock(nullptr);
}

void Surroundings::start() {
  isWatching_ = true;
  workspace_.setOnLock([this](bool isLocked) { lockChanged(isLocked); });
  follow();
}

void Surroundings::setWish(const Wish& wish) {
  if (wish == wish_) return;
  wish_ = wish;
  if (isWatching_) follow();
}

void Surroundings::follow() {
  if (wish_.quietDuringCalls || wish_.maskWhileRecorded) {
    mic_.start();
  } else {
    mic_.stop();
    isRecorded_ = false;
  }
  quietApps_.setWish(wish_.quietApps);
}

void Surroundings::micChanged(bool inUse) {
  const bool hasChanged = std::exchange(micInUse_, inUse) != inUse;
  if (hasChanged && wish_.quietDuringCalls) emit quietChanged();
}

void Surroundings::lockChanged(bool isLocked) {
  isLocked_ = isLocked;
  emit quietChanged();
}

void Surroundings::recordedChanged(bool isRecorded) {
  isRecorded_ = isRecorded;
  emit maskChanged();
}

}  // namespace tobrin
