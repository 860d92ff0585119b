/// What the panel's "More…" page binds to: the user's comforts in the types and texts of a view.
/// Keeps no state. Thread: main.
#pragma once

#include <QObject>
#include <QtQmlIntegration>

#include "Panel/HeldBackModel.h"
#include "Panel/QuietAppsModel.h"
#include "Panel/SoundModel.h"

namespace tobrin {

class AppModel;
struct Comforts;

class MoreModel final : public QObject {
  Q_OBJECT
  QML_NAMED_ELEMENT(MoreModel)
  QML_UNCREATABLE("handed to the panel by the program")

  Q_PROPERTY(
      bool quietWhileLocked READ quietWhileLocked WRITE setQuietWhileLocked NOTIFY comfortsChanged)
  Q_PROPERTY(tobrin::SoundModel* sound READ sound CONSTANT)
  Q_PROPERTY(bool hearsWhileLocked READ hearsWhileLocked NOTIFY permissionChanged)
  Q_PROPERTY(bool maskWhileRecorded READ maskWhileRecorded WRITE setMaskWhileRecorded NOTIFY
                 comfortsChanged)
  Q_PROPERTY(bool mouseSounds READ mouseSounds WRITE setMouseSounds NOTIFY comfortsChanged)
  Q_PROPERTY(bool wheelSounds READ wheelSounds WRITE setWheelSounds NOTIFY comfortsChanged)
  Q_PROPERTY(bool canHearMouse READ canHearMouse NOTIFY permissionChanged)
  Q_PROPERTY(bool packHasMouse READ packHasMouse NOTIFY packChanged)

  Q_PROPERTY(tobrin::QuietAppsModel* quietApps READ quietApps CONSTANT)
  Q_PROPERTY(tobrin::HeldBackModel* heldBack READ heldBack CONSTANT)

 public:
  explicit MoreModel(AppModel& model, QObject* parent = nullptr);

  [[nodiscard]] SoundModel* sound() { return &sound_; }
  [[nodiscard]] bool quietWhileLocked() const;
  /// Whether keys are heard while the screen is locked, so that the user's wish decides.
  [[nodiscard]] bool hearsWhileLocked() const;
  [[nodiscard]] bool maskWhileRecorded() const;

  [[nodiscard]] bool mouseSounds() const;
  [[nodiscard]] bool wheelSounds() const;
  [[nodiscard]] bool canHearMouse() const;
  /// Whether the chosen pack has sounds for a mouse; true, too, while none is loaded.
  [[nodiscard]] bool packHasMouse() const;
  [[nodiscard]] QuietAppsModel* quietApps() { return &quietApps_; }
  [[nodiscard]] HeldBackModel* heldBack() { return &heldBack_; }

  void setQuietWhileLocked(bool on);
  void setMaskWhileRecorded(bool on);
  void setMouseSounds(bool on);
  void setWheelSounds(bool on);

 signals:
  void comfortsChanged();
  void permissionChanged();
  void packChanged();

 private:
  AppModel& model_;
  SoundModel sound_;
  QuietAppsModel quietApps_;
  HeldBackModel heldBack_;
};

}  // namespace tobrin
