#include "Panel/MoreModel.h"

#include "Model/AppModel.h"

namespace tobrin {

MoreModel::MoreModel(AppModel& model, QObject* parent) : QObject(parent), model_(model) {
  connect(&model, &AppModel::settingsChanged, this, &MoreModel::comfortsChanged);
  connect(&model, &AppModel::permissionChanged, this, &MoreModel::permissionChanged);
}

template <typename Field>
void MoreModel::change(Field Comforts::*field, Field value) {
  Comforts comforts = model_.comforts();
  comforts.*field = std::move(value);
  model_.setComforts(comforts);
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

void MoreModel::setQuietWhileLocked(bool on) {
  change(&Comforts::quietWhileLocked, on);
}
void MoreModel::setMaskWhileRecorded(bool on) {
  change(&Comforts::maskWhileRecorded, on);
}

}  // namespace tobrin
