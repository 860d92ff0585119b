#include "Model/SettingsSaver.h"

#include <utility>

namespace tobrin {

SettingsSaver::SettingsSaver(SerialQueue& main, std::function<bool()> write)
    : main_(main), write_(std::move(write)) {}

void SettingsSaver::saveSoon() {
  unsaved_ = true;
  main_.after(restTime, [this, alive = std::weak_ptr(alive_), change = ++changes_] {
    if (!alive.expired() && change == changes_) save();
  });
}

void SettingsSaver::save() {
  if (unsaved_) unsaved_ = !write_();
}

}  // namespace tobrin
