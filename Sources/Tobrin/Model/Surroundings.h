/// What goes on around the program and asks for quiet: a call, a locked screen, the application in
/// front. Also whether a program records what is played: strokes then get the sounds of other keys.
/// Thread: main.
#pragma once

#include <QObject>
#include <memory>

#include "Base/SerialQueue.h"
#include "Engine/DesktopServices.h"
#include "Engine/FrontWindow.h"
#include "Mic/MicMonitor.h"
#include "Mic/MicSource.h"
#include "Model/QuietApps.h"

namespace tobrin {

class Surroundings final : public QObject {
  Q_OBJECT

 public:
  /// What it watches; queues and workspace outlive this object.
  struct Services {
    SerialQueue& main;
    SerialQueue& micQueue;  ///< "app.tobrin.mic"
    Workspace& workspace;
    std::unique_ptr<MicSource> micSource;
    std::unique_ptr<FrontWindow> frontWindow;
    QuietApps::Describe describeApp;
  };

  /// Which of these count, as the user wishes.
  struct Wish {
    bool quietDuringCalls = true;
    bool quietWhileLocked = true;
    bool maskWhileRecorded = true;
    QuietApps::Wish quietApps{};

    bool operator==(const Wish&) const = default;
  };

  /// Watches nothing before `start`; until then `micInUse` is all that it knows.
  Surroundings(Services&& services, bool micInUse);
  ~Surroundings() override;

  /// Watches from now on, as little as the wish needs. A screen that is locked is known at once.
  void start();
  void setWish(const Wish& wish);
  /// Microphones may have been taken, or be free again, since the machine went to sleep.
  void systemDidWake() { mic_.refresh(); }

  /// Some application uses a microphone. Kept up to date while a wish needs it.
  [[nodiscard]] bool micInUse() const { return micInUse_; }
  [[nodiscard]] bool isQuietForLock() const { return isLocked_ && wish_.quietWhileLocked; }
  /// Whether it is quiet for the application in front, and for which.
  [[nodiscard]] const QuietApps::Cause& quietApp() const { return quietApps_.cause(); }
  [[nodiscard]] bool isMasked() const { return isRecorded_ && wish_.maskWhileRecorded; }
  [[nodiscard]] QuietApps& quietApps() { return quietApps_; }

 signals:
  /// A reason for quiet has come or gone. A change by `setWish` may come without this signal.
  void quietChanged();
  void maskChanged();
  void candidateChanged();  ///< what `quietApps` knows of the application in front

 private:
  void follow();
  void micChanged(bool inUse);
  void lockChanged(bool isLocked);
  void recordedChanged(bool isRecorded);

  Workspace& workspace_;
  MicMonitor mic_;
  QuietApps quietApps_;
  Wish wish_;
  bool isWatching_ = false;
  bool micInUse_;
  bool isLocked_ = false;
  bool isRecorded_ = false;
};

}  // namespace tobrin
