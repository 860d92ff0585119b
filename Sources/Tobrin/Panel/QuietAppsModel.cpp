#include "Panel/QuietAppsModel.h"

#include "Model/AppModel.h"
#include "Panel/StrangersText.h"

namespace tobrin {

QuietAppsModel::QuietAppsModel(AppModel& model, QObject* parent) : QObject(parent), model_(model) {
  connect(&model, &AppModel::settingsChanged, this, &QuietAppsModel::wishChanged);
  connect(&model, &AppModel::settingsChanged, this, &QuietAppsModel::candidateChanged);
  connect(&model, &AppModel::candidateChanged, this, &QuietAppsModel::candidateChanged);
}

QVariantList QuietAppsModel::apps() const {
  QVariantList list;
  for (const QuietApp& app : model_.comforts().quiet.apps)
    list.append(
        QVariantMap{{"name", strangersText(app.name)},
                    {"icon", QString::fromStdString(model_.quietApps().describe(app.id).icon)}});
  return list;
}

QString QuietAppsModel::candidate() const {
  const std::string& id = model_.quietApps().candidate();
  if (id.empty() || model_.comforts().quiet.has(id)) return {};
  return strangersText(model_.quietApps().describe(id).name);
}

bool QuietAppsModel::inFullScreen() const {
  return model_.comforts().quiet.inFullScreen;
}

void QuietAppsModel::setInFullScreen(bool on) {
  QuietApps::Wish changed = model_.comforts().quiet;
  changed.inFullScreen = on;
  model_.change(&Comforts::quiet, changed);
}

QString QuietAppsModel::problem() const {
  switch (model_.quietApps().knowledge()) {
    case Front::Knowledge::known:
      return {};
    case Front::Knowledge::desktopDoesNotTell:
      return tr("This desktop does not tell which app is in front.");
    case Front::Knowledge::windowManagerDoesNotTell:
      return tr("No window manager tells which app is in front.");
  }
  return {};
}

void QuietAppsModel::addCandidate() {
  if (candidate().isEmpty()) return;
  const std::string id = model_.quietApps().candidate();
  QuietApps::Wish changed = model_.comforts().quiet;
  changed.apps.push_back({.id = id, .name = model_.quietApps().describe(id).name});
  model_.change(&Comforts::quiet, changed);
}

void QuietAppsModel::remove(int index) {
  QuietApps::Wish changed = model_.comforts().quiet;
  auto& apps = changed.apps;
  if (index < 0 || static_cast<std::size_t>(index) >= apps.size()) return;
  apps.erase(apps.begin() + index);
  model_.change(&Comforts::quiet, changed);
}

}  // namespace tobrin
