#include "Panel/PackShelfModel.h"

#include "Application/Translation.h"
#include "Model/AppModel.h"
#include "Panel/StrangersText.h"

namespace tobrin {

PackShelfModel::PackShelfModel(AppModel& model, QObject* parent) : QObject(parent), model_(model) {
  connect(&model.shelf(), &PackShelf::changed, this, &PackShelfModel::changed);
}

QString PackShelfModel::activity() const {
  const std::string name = model_.shelf().adding();
  return name.empty() ? QString() : tr("Adding %1…").arg(strangersText(name));
}

double PackShelfModel::fraction() const {
  return model_.shelf().fraction();
}

QString PackShelfModel::problem() const {
  const auto& problem = model_.shelf().problem();
  return problem ? strangersText(problem->sentence(translated)) : QString();
}

QString PackShelfModel::removed() const {
  const PackInfo* const pack = model_.shelf().discarded();
  return pack == nullptr ? QString() : tr("%1 is in the trash.").arg(strangersText(pack->name));
}

QString PackShelfModel::invitation() const {
  if (asking_ != Asking::byDropping) return {};
  return tr("Drop packs here: files, archives or folders.");
}

void PackShelfModel::setAsking(Asking asking) {
  asking_ = asking;
  emit changed();
}

void PackShelfModel::panelClosed() {
  if (asking_ == Asking::byDropping) setAsking(Asking::no);
  model_.shelf().forgetProblem();
}

void PackShelfModel::add(const QList<QUrl>& places) {
  std::vector<std::filesystem::path> files;
  for (const QUrl& place : places)
    if (place.isLocalFile()) files.emplace_back(place.toLocalFile().toStdString());
  if (asking_ == Asking::byDropping) setAsking(Asking::no);
  model_.shelf().add(files);
}

void PackShelfModel::choose() {
  if (asking_ != Asking::byChooser) emit choiceWanted();
}

void PackShelfModel::cancel() {
  model_.shelf().cancel();
}

void PackShelfModel::remove(const QString& packID) {
  model_.removePack(packID.toStdString());
}

void PackShelfModel::bringBack() {
  model_.undoRemoval();
}

}  // namespace tobrin
