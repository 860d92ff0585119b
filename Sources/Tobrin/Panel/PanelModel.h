/// What the panel's views bind to: the application model's state in the types and texts of a view.
/// Keeps no state. Thread: main.
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QtQmlIntegration>

#include "Model/StatusTexts.h"
#include "Panel/MoreModel.h"
#include "Panel/PackShelfModel.h"
#include "Panel/RecordingModel.h"

namespace tobrin {

class AppModel;
struct EngineSettings;

class PanelModel final : public QObject {
  Q_OBJECT
  QML_NAMED_ELEMENT(PanelModel)
  QML_UNCREATABLE("handed to the panel by the program")

  Q_PROPERTY(QString statusLine READ statusLine NOTIFY statusChanged)
  Q_PROPERTY(QString keyAccessTitle READ keyAccessTitle CONSTANT)
  Q_PROPERTY(QString keyAccessButton READ keyAccessButton CONSTANT)
  Q_PROPERTY(QString keyAccessNote READ keyAccessNote CONSTANT)
  Q_PROPERTY(bool canGiveBackKeyAccess READ canGiveBackKeyAccess NOTIFY permissionChanged)
  Q_PROPERTY(bool offersNarrowerKeyAccess READ offersNarrowerKeyAccess NOTIFY permissionChanged)
  Q_PROPERTY(QString noSensorNote READ noSensorNote CONSTANT)
  Q_PROPERTY(QString previewProblem READ previewProblem NOTIFY statusChanged)
  Q_PROPERTY(bool playing READ playing NOTIFY statusChanged)
  Q_PROPERTY(bool hasPermission READ hasPermission NOTIFY permissionChanged)
  Q_PROPERTY(bool needsRelaunch READ needsRelaunch NOTIFY permissionChanged)
  Q_PROPERTY(QString keyAccessProblem READ keyAccessProblem NOTIFY permissionChanged)

  Q_PROPERTY(QString soundProblem READ soundProblem NOTIFY soundProblemChanged)

  Q_PROPERTY(bool welcome READ welcome NOTIFY lastForceChanged)
  Q_PROPERTY(QString packsFolderProblem READ packsFolderProblem NOTIFY packsFolderProblemChanged)
  Q_PROPERTY(QString loginItemProblem READ loginItemProblem NOTIFY launchAtLoginChanged)

  Q_PROPERTY(tobrin::PackShelfModel* shelf READ shelf CONSTANT)
  Q_PROPERTY(tobrin::MoreModel* more READ more CONSTANT)
  Q_PROPERTY(tobrin::RecordingModel* recording READ recording CONSTANT)
  Q_PROPERTY(QVariantList packs READ packs NOTIFY packsChanged)
  Q_PROPERTY(QString selectedPackID READ selectedPackID NOTIFY selectedPackChanged)
  Q_PROPERTY(QVariantMap selectedPack READ selectedPack NOTIFY selectedPackChanged)
  Q_PROPERTY(QString packError READ packError NOTIFY packErrorChanged)

  Q_PROPERTY(bool soundsOn READ soundsOn WRITE setSoundsOn NOTIFY settingsChanged)
  Q_PROPERTY(double volume READ volume WRITE setVolume NOTIFY settingsChanged)
  Q_PROPERTY(bool sensorAvailable READ sensorAvailable CONSTANT)
  Q_PROPERTY(QString sensorProblem READ sensorProblem NOTIFY statusChanged)
  Q_PROPERTY(bool forceSensing READ forceSensing WRITE setForceSensing NOTIFY settingsChanged)
  Q_PROPERTY(double sensitivity READ sensitivity WRITE setSensitivity NOTIFY settingsChanged)
  Q_PROPERTY(int fixedTier READ fixedTier WRITE setFixedTier NOTIFY settingsChanged)
  Q_PROPERTY(bool releaseSounds READ releaseSounds WRITE setReleaseSounds NOTIFY settingsChanged)
  Q_PROPERTY(bool stereo READ stereo WRITE setStereo NOTIFY settingsChanged)
  Q_PROPERTY(
      bool quietDuringCalls READ quietDuringCalls WRITE setQuietDuringCalls NOTIFY settingsChanged)
  Q_PROPERTY(
      bool launchAtLogin READ launchAtLogin WRITE setLaunchAtLogin NOTIFY launchAtLoginChanged)

  Q_PROPERTY(bool hasReading READ hasReading NOTIFY lastForceChanged)
  Q_PROPERTY(double readingRelative READ readingRelative NOTIFY lastForceChanged)
  Q_PROPERTY(int readingTier READ readingTier NOTIFY lastForceChanged)
  Q_PROPERTY(QString readingCaption READ readingCaption NOTIFY lastForceChanged)

  Q_PROPERTY(
      bool shortcutEnabled READ shortcutEnabled WRITE setShortcutEnabled NOTIFY settingsChanged)
  Q_PROPERTY(QStringList shortcutChoices READ shortcutChoices NOTIFY shortcutChanged)
  Q_PROPERTY(int shortcutIndex READ shortcutIndex WRITE setShortcutIndex NOTIFY shortcutChanged)
  Q_PROPERTY(QString shortcutName READ shortcutName NOTIFY shortcutChanged)
  Q_PROPERTY(QString shortcutProblem READ shortcutProblem NOTIFY shortcutChanged)
  Q_PROPERTY(QString shortcutHint READ shortcutHint NOTIFY shortcutChanged)

 public:
  explicit PanelModel(AppModel& model, QObject* parent = nullptr);

  [[nodiscard]] QString statusLine() const;
  [[nodiscard]] QString keyAccessTitle() const;
  [[nodiscard]] QString keyAccessButton() const;
  [[nodiscard]] QString keyAccessNote() const;
  [[nodiscard]] bool canGiveBackKeyAccess() const;
  [[nodiscard]] bool offersNarrowerKeyAccess() const;
  [[nodiscard]] QString noSensorNote() const;
  /// Why a preview could not be heard now; empty where it can.
  [[nodiscard]] QString previewProblem() const;
  [[nodiscard]] bool playing() const;
  [[nodiscard]] bool hasPermission() const;
  [[nodiscard]] bool needsRelaunch() const;
  [[nodiscard]] QString keyAccessProblem() const;
  [[nodiscard]] QString soundProblem() const;  ///< empty while there is none
  /// On the very first start, until a key is heard.
  [[nodiscard]] bool welcome() const;
  [[nodiscard]] QString packsFolderProblem() const;  ///< empty while there is none
  [[nodiscard]] QString loginItemProblem() const;    ///< empty while there is none
  [[nodiscard]] PackShelfModel* shelf() { return &shelf_; }
  [[nodiscard]] MoreModel* more() { return &more_; }
  [[nodiscard]] RecordingModel* recording() { return &recording_; }
  [[nodiscard]] QVariantList packs() const;  ///< maps of id, name, kind, summary, own, problem
  [[nodiscard]] QString selectedPackID() const;
  [[nodiscard]] QVariantMap selectedPack() const;  ///< name, kind, summary, own, origin; or empty
  [[nodiscard]] QString packError() const;
  [[nodiscard]] bool soundsOn() const;
  [[nodiscard]] double volume() const;  ///< linear, 0 to 1 on the slider
  [[nodiscard]] bool sensorAvailable() const;
  [[nodiscard]] QString sensorProblem() const;  ///< empty while there is none
  [[nodiscard]] bool forceSensing() const;
  [[nodiscard]] double sensitivity() const;
  [[nodiscard]] int fixedTier() const;
  [[nodiscard]] bool releaseSounds() const;
  [[nodiscard]] bool stereo() const;
  [[nodiscard]] bool quietDuringCalls() const;
  [[nodiscard]] bool launchAtLogin() const;
  [[nodiscard]] bool hasReading() const;
  [[nodiscard]] double readingRelative() const;  ///< multiples of a typical stroke
  [[nodiscard]] int readingTier() const;         ///< 0 to 3
  [[nodiscard]] QString readingCaption() const;
  [[nodiscard]] bool shortcutEnabled() const;
  [[nodiscard]] QStringList shortcutChoices() const;
  [[nodiscard]] int shortcutIndex() const;
  [[nodiscard]] QString shortcutName() const;
  [[nodiscard]] QString shortcutProblem() const;  ///< empty while there is none
  [[nodiscard]] QString shortcutHint() const;

  void setSoundsOn(bool on);
  void setVolume(double volume);
  void setForceSensing(bool on);
  void setSensitivity(double sensitivity);
  void setFixedTier(int tier);
  void setReleaseSounds(bool on);
  void setStereo(bool on);
  void setQuietDuringCalls(bool on);
  void setLaunchAtLogin(bool on);
  void setShortcutEnabled(bool on);
  void setShortcutIndex(int index);

  Q_INVOKABLE void menuOpened();
  void menuClosed();
  Q_INVOKABLE void select(const QString& packID);
  Q_INVOKABLE void preview();
  Q_INVOKABLE void captureShortcut(bool captures);
  /// `modifiers` are the toolkit's. False where the keys cannot be a shortcut.
  Q_INVOKABLE bool chooseShortcut(quint32 scanCode, int modifiers);
  Q_INVOKABLE void playOneKey();
  Q_INVOKABLE void mute();
  Q_INVOKABLE void openSettings();
  Q_INVOKABLE void giveBackKeyAccess();
  Q_INVOKABLE void narrowKeyAccess();
  Q_INVOKABLE void keepWideKeyAccess();
  Q_INVOKABLE void relaunch();
  Q_INVOKABLE void openPacksFolder();
  Q_INVOKABLE void quit();

 signals:
  void statusChanged();
  void permissionChanged();
  void soundProblemChanged();
  void packsChanged();
  void selectedPackChanged();
  void packErrorChanged();
  void settingsChanged();
  void launchAtLoginChanged();
  void packsFolderProblemChanged();
  void lastForceChanged();
  /// A key was struck: its place in key widths from the left edge, whether it lies in the row of
  /// the space bar, its tier 0 to 3, and its strength 0 to 1.
  void keyStruck(double column, bool isBottom, int tier, double strength);
  void shortcutChanged();

 private:
  void lightKey();
  AppModel& model_;
  PackShelfModel shelf_;
  MoreModel more_;
  RecordingModel recording_;
  StatusTexts texts_;
};

}  // namespace tobrin
