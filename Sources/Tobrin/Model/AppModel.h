/// The running program: puts together the engine, the keys and what else this folder has, each a
/// class for one subject, and publishes the state that the panel shows. Callbacks from other
/// threads are moved to the main thread first. Thread: main.
#pragma once

#include <QObject>
#include <QString>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "Engine/Conductor.h"
#include "Engine/EngineSettings.h"
#include "Engine/PlaybackGate.h"
#include "Input/KeyMonitor.h"
#include "Model/AppServices.h"
#include "Model/Comforts.h"
#include "Model/DesktopActions.h"
#include "Model/KeyAccess.h"
#include "Model/OutputChoice.h"
#include "Model/PackCollection.h"
#include "Model/RecordingGuide.h"
#include "Model/SavedChoices.h"
#include "Model/ShortcutChoice.h"
#include "Model/StatusTexts.h"
#include "Model/Surroundings.h"

namespace tobrin {

class AppModel final : public QObject {
  Q_OBJECT

 public:
  static constexpr const char* defaultPackID = "leopold";

  /// A preview never reads or writes the settings store and starts neither keys nor sound.
  /// It shows a machine on which everything is well, except for what is said here.
  struct Preview {
    std::optional<std::string> pack = std::nullopt;
    bool micInUse = false;
    std::optional<ForceReading> reading = std::nullopt;  ///< with one, a motion sensor is shown too
  };

  explicit AppModel(AppServices services, std::optional<Preview> preview = std::nullopt);
  ~AppModel() override;

  // The parts that panel and tray act on.

  [[nodiscard]] KeyAccess& keyAccess() { return *keyAccess_; }
  [[nodiscard]] const ShortcutChoice& shortcut() const { return *shortcut_; }
  /// The packs that the user adds and removes.
  [[nodiscard]] PackShelf& shelf() { return packs_->shelf(); }
  /// Which device plays, and how loud.
  [[nodiscard]] OutputChoice& outputs() { return outputs_; }
  /// What is in front, as the panel shows it.
  [[nodiscard]] QuietApps& quietApps() { return surroundings_.quietApps(); }
  [[nodiscard]] RecordingGuide& recordingGuide() { return guide_; }
  [[nodiscard]] DesktopActions& desktop() { return desktop_; }
  [[nodiscard]] const PlatformWords& words() const { return services_.words; }
  [[nodiscard]] const Conductor& conductor() const { return *conductor_; }
  [[nodiscard]] const KeyMonitor& monitor() const { return *monitor_; }

  // What the user has chosen.

  /// Whether this user has never run the program before.
  [[nodiscard]] bool isFirstStart() const { return choices_.isFirstStart(); }
  [[nodiscard]] const EngineSettings& settings() const { return choices_.settings(); }
  void setSettings(const EngineSettings& changed);
  [[nodiscard]] const Comforts& comforts() const { return choices_.comforts(); }
  void setComforts(const Comforts& changed);
  /// Changes one of the settings, or of the comforts.
  template <typename Field, typename Value>
  void change(Field EngineSettings::*field, Value value) {
    EngineSettings changed = settings();
    changed.*field = static_cast<Field>(value);
    setSettings(changed);
  }
  template <typename Field>
  void change(Field Comforts::*field, Field value) {
    Comforts changed = comforts();
    changed.*field = std::move(value);
    setComforts(changed);
  }
  void toggleEnabled();
  /// Sets the volume to 0, or back to what it was.
  void mute();
  /// While the user presses keys to choose a new shortcut, the old one is released.
  void captureShortcut(bool captures);
  /// Takes a key with modifiers as the shortcut. False where they cannot be one.
  bool chooseShortcut(uint32_t scanCode, Modifiers modifiers);
  /// The user keeps an older access to keys, which other programs have too.
  void keepWideKeyAccess();

  // Packs.

  [[nodiscard]] const std::vector<PackInfo>& packs() const { return packs_->selection().packs(); }
  /// Folders among the user's packs that hold none, for the user to see why.
  [[nodiscard]] const std::vector<UnusableFolder>& unusableFolders() const {
    return packs_->selection().unusable();
  }
  [[nodiscard]] const PackInfo* selectedPack() const { return packs_->selection().selected(); }
  [[nodiscard]] const std::string& selectedPackID() const {
    return packs_->selection().selectedID();
  }
  /// The decoded pack's own description; absent while none is loaded.
  [[nodiscard]] const std::optional<PackManifest>& loadedManifest() const {
    return packs_->selection().manifest();
  }
  [[nodiscard]] const std::optional<std::string>& packError() const {
    return packs_->selection().error();
  }
  /// Chooses a pack, loads and auditions it. The pack that is chosen already is loaded again only
  /// where that has failed or it has changed.
  void setSelectedPackID(const std::string& id) { packs_->selection().select(id); }
  void select(const PackInfo& pack) { setSelectedPackID(pack.id); }
  /// Moves one of the user's own packs to the trash; the one after it takes its place.
  void removePack(const std::string& id) { packs_->remove(id); }
  /// Brings the pack back that was removed last, and the choice of before.
  void undoRemoval() { packs_->undoRemoval(); }
  /// Finds the packs again. Where the chosen one is gone, the one in its place is chosen.
  void refreshPacks() { packs_->selection().refresh(); }
  /// Finds the packs again, and loads the chosen one if it has changed.
  void lookForPacks() { packs_->look(); }
  void audition();
  /// Lets one key be heard, to judge how loud keys are.
  void playOneKey();

  // How it goes.

  /// Whether keys can be heard now, or what is in the way.
  [[nodiscard]] SoundState soundState() const;
  [[nodiscard]] ProgramStatus status() const;
  [[nodiscard]] std::string statusLine() const;
  [[nodiscard]] bool hasPermission() const { return preview_ || keyAccess_->state().hasPermission; }
  [[nodiscard]] bool listening() const { return keyAccess_->state().listening; }
  /// Why nothing can be heard, in a sentence; empty while it can.
  [[nodiscard]] const std::string& soundProblem() const { return soundProblem_; }
  [[nodiscard]] bool sensorAvailable() const { return sensorAvailable_; }
  /// Why the sensor that is there does not work, in words; empty while it does.
  [[nodiscard]] const std::string& sensorProblem() const { return sensorProblem_; }
  [[nodiscard]] const std::optional<ForceReading>& lastForce() const { return lastForce_; }
  [[nodiscard]] bool micInUse() const { return surroundings_.micInUse(); }
  [[nodiscard]] PlaybackGate gate() const;
  /// The settings as the engine gets them: sounds only while the gate is open, force only with a
  /// sensor.
  [[nodiscard]] EngineSettings effectiveSettings() const;

  // What the panel tells about itself.

  void menuOpened();
  void menuClosed();

 signals:
  void settingsChanged();  ///< settings, comforts
  void selectedPackChanged();
  void packsChanged();
  void packErrorChanged();
  void permissionChanged();  ///< what keyAccess() says
  void lastForceChanged();
  void shortcutChanged();   ///< what shortcut() says
  void candidateChanged();  ///< what `quietApps` knows of the application in front
  void outputChanged();     ///< what the sound goes through, or soundProblem
  void statusChanged();     ///< statusLine, soundState or sensorProblem may differ

 private:
  [[nodiscard]] std::unique_ptr<AudioOutput> makeOutput();
  [[nodiscard]] std::unique_ptr<ForceSensor> makeSensor();
  void makeConductor();
  void makeMonitor();
  void makePacks(const std::string& selectedID);
  [[nodiscard]] OutputChoice::Services outputServices();
  [[nodiscard]] Surroundings::Services surroundingsServices();
  [[nodiscard]] RecordingGuide::Services guideServices();
  void wirePacks();
  void wireCallbacks();
  void start();

  [[nodiscard]] Surroundings::Wish surroundingsWish() const;
  void applyToMonitor();
  void applyQuietly();
  void applyMask();
  void adoptVolume(float volume);
  void registerShortcut();
  void sensorChanged(const std::string& problem);
  void outputProblemChanged(const std::string& problem);

  /// Runs `task` on the main thread if the model is still there.
  void onMain(std::function<void()> task);

  AppServices services_;  // devices moved out during construction
  bool preview_;          // fixed after construction
  bool sensorAvailable_;  // fixed after construction

  SavedChoices choices_;
  OutputChoice outputs_;
  DesktopActions desktop_;
  Surroundings surroundings_;
  bool isSilent_ = false;  // while a keyboard is recorded
  std::string sensorProblem_;
  float volumeBeforeMute_ = EngineSettings().volume;
  std::string soundProblem_;
  std::optional<ForceReading> lastForce_;

  std::shared_ptr<AppModel*> self_;  // null inside once the model is gone; shared with posted tasks
  std::unique_ptr<Conductor> conductor_;
  std::unique_ptr<PackCollection> packs_;
  std::unique_ptr<KeyMonitor> monitor_;
  std::unique_ptr<KeyAccess> keyAccess_;
  std::unique_ptr<ShortcutChoice> shortcut_;
  RecordingGuide guide_;  // last: it gets keys from the monitor until that has stopped
};

}  // namespace tobrin
