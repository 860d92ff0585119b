#include "Panel/HeldBackModel.h"

#include "Model/AppModel.h"
#include "Panel/StrangersText.h"

namespace tobrin {

HeldBackModel::HeldBackModel(AppModel& model, QObject* parent) : QObject(parent), model_(model) {
  connect(&model, &AppModel::settingsChanged, this, &HeldBackModel::namesChanged);
}

QStringList HeldBackModel::names() const {
  QStringList list;
  for (const std::string& name : model_.comforts().heldBackKeyboards)
    list.append(QString::fromStdString(name));
  return list;
}

bool HeldBackModel::isUsual() const {
  return model_.comforts().heldBackKeyboards == HeldBackKeyboards::usual();
}

void HeldBackModel::add(const QString& name) {
  const QString added = strangersText(name.toStdString());
  if (!added.isEmpty() && !names().contains(added, Qt::CaseInsensitive)) set(names() << added);
}

void HeldBackModel::remove(int index) {
  QStringList left = names();
  if (index < 0 || index >= left.size()) return;
  left.removeAt(index);
  set(left);
}

void HeldBackModel::takeUsual() {
  model_.change(&Comforts::heldBackKeyboards, HeldBackKeyboards::usual());
}

void HeldBackModel::set(const QStringList& names) {
  HeldBackKeyboards::Names changed;
  for (const QString& name : names)
    changed.push_back(name.toStdString());
  model_.change(&Comforts::heldBackKeyboards, changed);
}

}  // namespace tobrin
