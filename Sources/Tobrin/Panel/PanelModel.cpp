#include "Panel/PanelModel.h"

#include <QLocale>
#include <algorithm>
#include <cmath>

#include "Application/Translation.h"
#include "Input/KeyLayout.h"
#include "Model/AppModel.h"
#include "Panel/StrangersText.h"

namespace tobrin {
namespace {

constexpr float stereoWidth = 0.5f;  // what switching stereo on sets

QString text(std::string_view utf8) {
  return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

QString textOrNone(const std::optional<std::string>& utf8) {
  return utf8 ? text(*utf8) : QString();
}

/// Author and licence, the author once where the licence names them.
QString origin(const PackManifest& manifest) {
  const QString author = strangersText(manifest.author);
  QString license = strangersText(manifest.license);
  if (author.isEmpty() || license.contains(author)) return license;
  return license.isEmpty() ? author : author + " · " + license;
}

}  // namespace

PanelModel::PanelModel(AppModel& model, QObject* parent)
    : QObject(parent),
      model_(model),
      shelf_(model),
      more_(model),
      recording_(model),
      texts_(model.words(), translated) {
  connect(&model, &AppModel::statusChanged, this, &PanelModel::statusChanged);
  connect(&model, &AppModel::permissionChanged, this, &PanelModel::permissionChanged);
  connect(&model, &AppModel::outputChanged, this, &PanelModel::soundProblemChanged);
  connect(&model, &AppModel::packsChanged, this, &PanelModel::packsChanged);
  connect(&model, &AppModel::packsChanged, this, &PanelModel::selectedPackChanged);
  connect(&model, &AppModel::selectedPackChanged, this, &PanelModel::selectedPackChanged);
  connect(&model, &AppModel::packErrorChanged, this, &PanelModel::packErrorChanged);
  connect(&model, &AppModel::settingsChanged, this, &PanelModel::settingsChanged);
  connect(&model, &AppModel::settingsChanged, this, &PanelModel::shortcutChanged);
  connect(&model, &AppModel::shortcutChanged, this, &PanelModel::shortcutChanged);
  connect(&model.desktop(), &DesktopActions::launchAtLoginChanged, this,
          &PanelModel::launchAtLoginChanged);
  connect(&model.desktop(), &DesktopActions::packsFolderProblemChanged, this,
          &PanelModel::packsFolderProblemChanged);
  connect(&model, &AppModel::lastForceChanged, this, &PanelModel::lastForceChanged);
  connect(&model, &AppModel::lastForceChanged, this, &PanelModel::lightKey);
}

void PanelModel::lightKey() {
  if (!hasReading()) return;
  const uint16_t code = model_.lastForce()->code;
  const KeyGroup group = keyGroupOf(code);
  const double strength = static_cast<double>(model_.lastForce()->position) / 3;
  emit keyStruck(keyColumn(code).value_or(0),
                 group == KeyGroup::space || group == KeyGroup::modifier, readingTier(),
                 std::clamp(strength, 0.0, 1.0));
}

// State

QString PanelModel::statusLine() const {
  return strangersText(texts_.statusLine(model_.status()));
}
QString PanelModel::keyAccessTitle() const {
  return text(translated(model_.words().keyAccessTitle));
}
QString PanelModel::keyAccessButton() const {
  return text(translated(model_.words().keyAccessButton));
}
QString PanelModel::noSensorNote() const {
  return text(translated(model_.words().forceNeedsSensor));
}
QString PanelModel::previewProblem() const {
  switch (model_.soundState()) {
    case SoundState::noKeyAccess:
    case SoundState::pausedInBackground:
    case SoundState::pausedWhileLocked:
    case SoundState::recording:
    case SoundState::quietForApp:  // ends when the panel comes to the front
    case SoundState::playing:
      return {};
    case SoundState::noSound:
      return soundProblem();
    case SoundState::packBroken:
      return packError();
    case SoundState::off:
      return tr("Sounds are off.");
    case SoundState::pausedForCall:
      return tr("Sounds pause while the mic is in use.");
    case SoundState::muted:
      return tr("The volume is at 0.");
  }
  return {};
}
bool PanelModel::playing() const {
  return model_.soundState() == SoundState::playing;
}
QString PanelModel::keyAccessNote() const {
  return text(translated(model_.words().keyAccessNote));
}

bool PanelModel::canGiveBackKeyAccess() const {
  return model_.keyAccess().canGiveBack();
}

bool PanelModel::offersNarrowerKeyAccess() const {
  return model_.keyAccess().offersNarrower();
}

bool PanelModel::hasPermission() const {
  return model_.hasPermission();
}
bool PanelModel::needsRelaunch() const {
  return model_.keyAccess().state().needsRelaunch;
}

QString PanelModel::keyAccessProblem() const {
  return text(model_.keyAccess().problem());
}

QString PanelModel::soundProblem() const {
  return text(model_.soundProblem());
}

bool PanelModel::welcome() const {
  return model_.isFirstStart() && !model_.lastForce();
}

QString PanelModel::packsFolderProblem() const {
  return text(model_.desktop().packsFolderProblem());
}

QString PanelModel::loginItemProblem() const {
  return text(model_.desktop().loginItemProblem());
}

// Packs

QVariantList PanelModel::packs() const {
  QVariantList list;
  for (const PackInfo& pack : model_.packs()) {
    list.append(QVariantMap{{"id", text(pack.id)},
                            {"name", strangersText(pack.name)},
                            {"kind", strangersText(pack.kind)},
                            {"summary", strangersText(pack.summary)},
                            {"own", !pack.isBundled},
                            {"problem", QString()}});
  }
  for (const auto& [folder, reason] : model_.unusableFolders()) {
    list.append(QVariantMap{{"id", QString()},
                            {"name", strangersText(folder.filename().string())},
                            {"kind", tr("No pack")},
                            {"summary", QString()},
                            {"own", false},
                            {"problem", strangersText(reason)}});
  }
  return list;
}

QString PanelModel::selectedPackID() const {
  return text(model_.selectedPackID());
}

QVariantMap PanelModel::selectedPack() const {
  const PackInfo* pack = model_.selectedPack();
  if (pack == nullptr) return {};
  QVariantMap details{{"name", strangersText(pack->name)},
                      {"kind", strangersText(pack->kind)},
                      {"summary", strangersText(pack->summary)},
                      {"own", !pack->isBundled},
                      {"origin", QString()}};
  const auto& manifest = model_.loadedManifest();
  if (manifest && manifest->id == pack->id) details["origin"] = origin(*manifest);
  return details;
}

QString PanelModel::packError() const {
  return strangersText(model_.packError());
}

// Settings

bool PanelModel::soundsOn() const {
  return model_.settings().enabled;
}
double PanelModel::volume() const {
  return static_cast<double>(model_.settings().volume);
}
bool PanelModel::sensorAvailable() const {
  return model_.sensorAvailable();
}
QString PanelModel::sensorProblem() const {
  return text(model_.sensorProblem());
}
bool PanelModel::forceSensing() const {
  return model_.settings().forceSensing;
}
double PanelModel::sensitivity() const {
  return static_cast<double>(model_.settings().sensitivity);
}
int PanelModel::fixedTier() const {
  return static_cast<int>(model_.settings().fixedTier);
}
bool PanelModel::releaseSounds() const {
  return model_.settings().releaseSounds;
}
bool PanelModel::stereo() const {
  return model_.settings().spatial > 0;
}
bool PanelModel::quietDuringCalls() const {
  return model_.settings().quietDuringCalls;
}
bool PanelModel::launchAtLogin() const {
  return model_.desktop().launchAtLogin();
}
bool PanelModel::shortcutEnabled() const {
  return model_.settings().shortcutEnabled;
}

void PanelModel::setSoundsOn(bool on) {
  model_.change(&EngineSettings::enabled, on);
}
void PanelModel::setVolume(double volume) {
  model_.change(&EngineSettings::volume, volume);
}
void PanelModel::setForceSensing(bool on) {
  model_.change(&EngineSettings::forceSensing, on);
}
void PanelModel::setSensitivity(double sensitivity) {
  model_.change(&EngineSettings::sensitivity, sensitivity);
}
void PanelModel::setFixedTier(int raw) {
  if (const auto chosen = tier(raw)) model_.change(&EngineSettings::fixedTier, *chosen);
}
void PanelModel::setReleaseSounds(bool on) {
  model_.change(&EngineSettings::releaseSounds, on);
}
void PanelModel::setStereo(bool on) {
  model_.change(&EngineSettings::spatial, on ? stereoWidth : 0.0f);
}
void PanelModel::setQuietDuringCalls(bool on) {
  model_.change(&EngineSettings::quietDuringCalls, on);
}
void PanelModel::setLaunchAtLogin(bool on) {
  model_.desktop().setLaunchAtLogin(on);
}
void PanelModel::setShortcutEnabled(bool on) {
  model_.change(&EngineSettings::shortcutEnabled, on);
}

// Force meter

bool PanelModel::hasReading() const {
  return model_.lastForce().has_value();
}

double PanelModel::readingRelative() const {
  return hasReading() ? static_cast<double>(model_.lastForce()->relative) : 0.0;
}

int PanelModel::readingTier() const {
  if (!hasReading()) return 0;
  return static_cast<int>(std::lround(std::clamp(model_.lastForce()->position, 0.0f, 3.0f)));
}

QString PanelModel::readingCaption() const {
  if (!hasReading()) return {};
  return tr("Last key: %1× a typical keystroke (%2 g)")
      .arg(QLocale().toString(readingRelative(), 'f', 1),
           QLocale().toString(static_cast<double>(model_.lastForce()->peak), 'f', 3));
}

// Shortcut

QStringList PanelModel::shortcutChoices() const {
  QStringList names;
  for (const Hotkey& each : model_.shortcut().offered())
    names.append(text(model_.shortcut().display(each)));
  return names;
}

int PanelModel::shortcutIndex() const {
  const auto offered = model_.shortcut().offered();
  const auto found = std::find(offered.begin(), offered.end(), model_.settings().shortcut);
  return static_cast<int>(found - offered.begin());
}

void PanelModel::setShortcutIndex(int index) {
  const auto offered = model_.shortcut().offered();
  if (index < 0 || index >= static_cast<int>(offered.size())) return;
  model_.change(&EngineSettings::shortcut, offered[static_cast<std::size_t>(index)]);
}

QString PanelModel::shortcutName() const {
  return text(model_.shortcut().display(model_.settings().shortcut));
}

void PanelModel::captureShortcut(bool captures) {
  model_.captureShortcut(captures);
}

bool PanelModel::chooseShortcut(quint32 scanCode, int modifiers) {
  constexpr std::pair<Qt::KeyboardModifier, uint32_t> names[] = {
      {Qt::ControlModifier, Modifiers::control},
      {Qt::AltModifier, Modifiers::option},
      {Qt::ShiftModifier, Modifiers::shift},
      {Qt::MetaModifier, Modifiers::command}};
  Modifiers pressed;
  for (const auto& [toolkits, ours] : names)
    if ((static_cast<quint32>(modifiers) & static_cast<quint32>(toolkits)) != 0)
      pressed.rawValue |= ours;
  return model_.chooseShortcut(scanCode, pressed);
}

QString PanelModel::shortcutProblem() const {
  return textOrNone(texts_.shortcutProblem(model_.shortcut().status(),
                                           model_.shortcut().display(model_.settings().shortcut)));
}

QString PanelModel::shortcutHint() const {
  return text(texts_.shortcutHint(model_.shortcut().display(model_.settings().shortcut),
                                  model_.shortcut().route()));
}

// Actions

void PanelModel::menuClosed() {
  model_.menuClosed();
}

void PanelModel::menuOpened() {
  model_.menuOpened();
}
void PanelModel::select(const QString& packID) {
  model_.setSelectedPackID(packID.toStdString());
}
void PanelModel::preview() {
  model_.audition();
}
void PanelModel::playOneKey() {
  model_.playOneKey();
}
void PanelModel::mute() {
  model_.mute();
}
void PanelModel::giveBackKeyAccess() {
  model_.keyAccess().giveBack();
}
void PanelModel::narrowKeyAccess() {
  model_.keyAccess().narrow();
}
void PanelModel::keepWideKeyAccess() {
  model_.keepWideKeyAccess();
}

void PanelModel::openSettings() {
  model_.keyAccess().allow();
}
void PanelModel::relaunch() {
  model_.desktop().relaunch();
}
void PanelModel::openPacksFolder() {
  model_.desktop().openPacksFolder();
}
void PanelModel::quit() {
  model_.desktop().quit();
}

}  // namespace tobrin
