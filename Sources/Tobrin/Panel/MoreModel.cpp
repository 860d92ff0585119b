#include "Panel/MoreModel.h"

#include "Model/AppModel.h"

namespace tobrin {

MoreModel::MoreModel(AppModel& model, QObject* parent)
    : QObject(parent), model_(model), sound_(model), quietApps_(model), heldBack_(model) {
  connect(&model, &AppModel::settingsChanged, this, &MoreModel::comfortsChanged);
  connect(&model, &AppModel::permissionChanged, this, &MoreModel::permissionChanged);
  connect(&model, &AppModel::selectedPackChanged, this, &MoreModel::packChanged);
}

bool MoreModel::quietWhileLocked() const {
  return model_.comforts().quietWhileLocked;
}
bool MoreModel::hearsWhileLocked() const {
  return model_.keyAccess().state().hearsWhileLocked;
}
bool MoreModel::maskWhileRecorded() const {
  return model_.comforts().maskWhileRecorded;
}

bool MoreModel::mouseSounds() const {
  return model_.comforts().mouseSounds;
}
bool MoreModel::wheelSounds() const {
  return model_.comforts().wheelSounds;
}
bool MoreModel::canHearMouse() const {
  return model_.monitor().canHearMouse();
}
bool MoreModel::packHasMouse() const {
  const auto& pack = model_.loadedManifest();
  return !pack || pack->groups.contains(std::string(rawValue(KeyGroup::mouse)));
}

void MoreModel::setQuietWhileLocked(bool on) {
  model_.change(&Comforts::quietWhileLocked, on);
}
void MoreModel::setMaskWhileRecorded(bool on) {
  model_.change(&Comforts::maskWhileRecorded, on);
}

void MoreModel::setMouseSounds(bool on) {
  model_.change(&Comforts::mouseSounds, on);
}
void MoreModel::setWheelSounds(bool on) {
  model_.change(&Comforts::wheelSounds, on);
}

}  // namespace tobrin
