#include "Panel/SoundModel.h"

#include <algorithm>

#include "Engine/VoiceBoost.h"
#include "Model/AppModel.h"
#include "Model/OutputChoice.h"
#include "Panel/StrangersText.h"

namespace tobrin {

SoundModel::SoundModel(AppModel& model, QObject* parent)
    : QObject(parent), model_(model), choice_(model.outputs()) {
  connect(&choice_, &OutputChoice::changed, this, &SoundModel::changed);
}

QStringList SoundModel::outputs() const {
  QStringList names{tr("System default")};
  for (const auto& entry : choice_.entries()) {
    const QString name = strangersText(entry.name);
    names.append(entry.isPresent ? name : tr("%1 (away)").arg(name));
  }
  return names;
}

int SoundModel::outputIndex() const {
  const auto entries = choice_.entries();
  const auto chosen = std::ranges::find(entries, choice_.chosen(), &OutputChoice::Entry::id);
  return chosen == entries.end() ? 0 : static_cast<int>(chosen - entries.begin()) + 1;
}

void SoundModel::setOutputIndex(int index) {
  const auto entries = choice_.entries();
  if (index < 0 || index > static_cast<int>(entries.size())) return;
  choice_.choose(index == 0 ? "" : entries[static_cast<std::size_t>(index) - 1].id);
}

QString SoundModel::outputNote() const {
  const OutputChoice::Entry used = choice_.used();
  if (used.name.empty() || used.id == choice_.chosen()) return {};
  return tr("It sounds on %1 now.").arg(strangersText(used.name));
}

double SoundModel::boost() const {
  return static_cast<double>(choice_.boost());
}

void SoundModel::setBoost(double boost) {
  choice_.setBoost(static_cast<float>(boost));
}

double SoundModel::mostBoost() const {
  return static_cast<double>(VoiceBoost::most);
}

void SoundModel::playOneKey() {
  model_.playOneKey();
}

}  // namespace tobrin
