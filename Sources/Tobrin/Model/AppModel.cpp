#include "Model/AppModel.h"

#include "Base/Log.h"

namespace tobrin {

AppModel::AppModel(AppServices services, std::optional<Preview> preview)
    : services_(std::move(services)),
      preview_(preview.has_value()),
      sensorAvailable_(services_.motionSource != nullptr || (preview && preview->reading)),
      saver_(services_.main,
             [this] { return services_.settings.write(settingsKey, settings_.toJson()); }),
      comfortsSaver_(services_.main,
                     [this] { return services_.settings.write(comfortsKey, comforts_.toJson()); }),
      outputs_(outputServices()),
      shelf_(services_.main, services_.adding, services_.addPack, services_.discardPack),
      self_(std::make_shared<AppModel*>(this)),
      guide_(guideServices()) {
  const std::string selectedID = readSavedState(preview);
  auto sensor = services_.motionSource != nullptr
                    ? std::make_unique<ForceSensor>(std::move(services_.motionSource),
                                                    [onStart = services_.onThreadStart] {
                                                      if (onStart) onStart(ForceSensor::threadName);
                                                    })
                    : nullptr;
  auto output = std::make_unique<AudioOutput>(
      std::move(services_.audioDevice), [this](const SoundOutputs& outputs) {
        onMain([this, outputs] { outputs_.outputsChanged(outputs); });
      });
  output->setOnProblem([this](const std::string& problem) {
    onMain([this, problem] { outputProblemChanged(problem); });
  });
  conductor_ =
      std::make_unique<Conductor>(services_.conductorQueue, std::move(output), std::move(sensor));
  startPacks(selectedID);
  wireCallbacks();
  start();
}

AppModel::~AppModel() {
  *self_ = nullptr;
  services_.workspace.setOnWake(nullptr);
  services_.workspace.setOnLock(nullptr);
  services_.workspace.setOnTerminate(nullptr);
  services_.shortcutService->setOnChanged(nullptr);
  shortcut_->unregister();
  monitor_->stop();
  micMonitor_->stop();
  conductor_->setOnForce(nullptr);
  conductor_->shutdown();
}

void AppModel::onMain(std::function<void()> task) {
  services_.main.async([self = self_, run = std::move(task)] {
    if (*self != nullptr) run();
  });
}

std::string AppModel::readSavedState(const std::optional<Preview>& preview) {
  if (preview) {
    micInUse_ = preview->micInUse;
    lastForce_ = preview->reading;
    return preview->pack.value_or(defaultPackID);
  }
  const auto saved = services_.settings.read(settingsKey);
  if (saved) {
    try {
      settings_ = EngineSettings::fromJson(*saved);
    } catch (const std::exception& error) {
      services_.settings.keepAside(settingsKey);
      logLine(std::string("saved settings can't be read, using the defaults: ") + error.what());
    }
  }
  if (const auto comforts = services_.settings.read(comfortsKey))
    comforts_ = Comforts::fromJson(*comforts);
  const auto selectedID = services_.settings.readText(selectedPackKey);
  isFirstStart_ = !saved && !selectedID;
  return selectedID.value_or(defaultPackID);
}

void AppModel::wireCallbacks() {
  conductor_->setOnForce([this](const ForceReading& reading) {
    guide_.addForce(reading);
    onMain([this, reading] {
      lastForce_ = reading;
      emit lastForceChanged();
    });
  });
  conductor_->setOnSensorProblem(
      [this](const std::string& problem) { onMain([this, problem] { sensorChanged(problem); }); });
  monitor_ = std::make_unique<KeyMonitor>(
      std::move(services_.keySource), [this](const KeyEvent& event) { conductor_->handle(event); },
      KeyMonitorOptions{.onThreadStart = services_.onThreadStart,
                        .observer =
                            [this](const KeyEvent& event) {
                              services_.shortcutService->observe(event);
                              guide_.addKey(event);
                            },
                        .onChange = [this] { onMain([this] { keyAccess_->monitorChanged(); }); }});
  applyToMonitor();
  keyAccess_ = std::make_unique<KeyAccess>(
      KeyAccess::Services{.monitor = *monitor_,
                          .main = services_.main,
                          .workspace = services_.workspace,
                          .keepsWide = [this] { return comforts_.keepsWideKeyAccess; },
                          .onChange =
                              [this] {
                                emit permissionChanged();
                                emit statusChanged();
                              }});
  shortcut_ = std::make_unique<ShortcutChoice>(*services_.shortcutService, services_.words,
                                               std::move(services_.keyOfScanCode),
                                               [this] { onMain([this] { toggleEnabled(); }); });
  services_.shortcutService->setOnChanged([this] { onMain([this] { registerShortcut(); }); });
  micMonitor_ = std::make_unique<MicMonitor>(services_.micQueue, services_.main,
                                             std::move(services_.micSource));
  micMonitor_->setOnChange([this, self = self_](bool inUse) {
    if (*self != nullptr) micChanged(inUse);
  });
  micMonitor_->setOnOutputRecorded([this, self = self_](bool recorded) {
    if (*self != nullptr) outputRecordedChanged(recorded);
  });
  quietApps_ = std::make_unique<QuietApps>(
      std::move(services_.frontWindow), services_.describeApp, services_.main,
      QuietApps::Notices{.onCause = [this] { quietChanged(); },
                         .onCandidate = [this] { emit candidateChanged(); }});
  connect(&shelf_, &PackShelf::added, this, &AppModel::packAdded);
  connect(&shelf_, &PackShelf::changed, this, [this] {
    if (shelf_.problem()) guide_.keepFailed(shelf_.problem()->reason);
  });
  services_.workspace.setOnWake([this] {
    conductor_->systemDidWake();
    micMonitor_->refresh();
  });
  services_.workspace.setOnLock([this](bool isLocked) { lockChanged(isLocked); });
  services_.workspace.setOnTerminate([this] {
    conductor_->shutdown();
    saver_.save();
    comfortsSaver_.save();
  });
}

void AppModel::start() {
  packs_->start();
  registerShortcut();
  if (preview_) return;
  if (isFirstStart_) saver_.saveSoon();
  outputs_.start();
  conductor_->apply(effectiveSettings(), true);
  keyAccess_->start();
  updateMicMonitor();
  quietApps_->setWish(comforts_.quiet);
  readLoginItem();
}

// Settings

void AppModel::setSettings(const EngineSettings& settings) {
  if (settings == settings_) return;
  const EngineSettings old = std::exchange(settings_, settings);
  if (!preview_) saver_.saveSoon();
  if (old.shortcutEnabled != settings_.shortcutEnabled || old.shortcut != settings_.shortcut) {
    registerShortcut();
  }
  if (old.quietDuringCalls != settings_.quietDuringCalls) updateMicMonitor();
  if (old.volume != settings_.volume) outputs_.volumeChanged();
  if (!preview_) conductor_->apply(effectiveSettings(), true);
  emit settingsChanged();
  emit statusChanged();
}

void AppModel::setComforts(const Comforts& comforts) {
  if (comforts == comforts_) return;
  comforts_ = comforts;
  applyToMonitor();
  if (!preview_) comfortsSaver_.saveSoon();
  if (!preview_) quietApps_->setWish(comforts_.quiet);
  updateMicMonitor();
  if (!preview_) conductor_->apply(effectiveSettings(), false);
  applyMask();
  emit settingsChanged();
}

void AppModel::applyToMonitor() {
  monitor_->holdBack(comforts_.heldBackKeyboards);
  monitor_->hearMouse(!comforts_.mouseSounds  ? MouseHearing::nothing
                      : comforts_.wheelSounds ? MouseHearing::buttonsAndWheel
                                              : MouseHearing::buttons);
}

void AppModel::toggleEnabled() {
  PlaybackGate toggled = gate();
  toggled.toggle();
  EngineSettings changed = settings_;
  changed.enabled = toggled.enabled;
  setSettings(changed);
}

PlaybackGate AppModel::gate() const {
  return {settings_.enabled, settings_.quietDuringCalls, micInUse_};
}

EngineSettings AppModel::effectiveSettings() const {
  EngineSettings effective = settings_;
  // While a keyboard is recorded its force is measured, and nothing is heard.
  const bool onlyMeasures = isSilent_ && settings_.forceSensing && sensorAvailable_;
  const bool plays = played_->isTrying() || onlyMeasures ||
                     (gate().isPlaying() && !isSilent_ && !quietApps_->cause().isQuiet);
  effective.enabled = plays && !isSilentByLock();
  if (onlyMeasures) effective.volume = 0;
  effective.forceSensing = settings_.forceSensing && sensorAvailable_;
  return effective;
}

SoundState AppModel::soundState() const {
  return tobrin::soundState(
      {.hasKeyAccess = hasPermission(),
       .hasSound = soundProblem_.empty(),
       .hasPack = !packError(),
       .isOn = settings_.enabled,
       .isRecording = isSilent_,
       .pause = isSilentByLock() ? KeyPause::locked : keyAccess_->state().pause,
       .isInCall = gate().state() == PlaybackGate::State::pausedForCall,
       .isQuietForApp = quietApps_->cause().isQuiet,
       .volume = settings_.volume});
}

ProgramStatus AppModel::status() const {
  const PackInfo* pack = selectedPack();
  return {.sound = soundState(),
          .isMasked = isMasked(),
          .quietApp = quietApps_->cause().app,
          .packName = pack != nullptr ? std::optional(pack->name) : std::nullopt,
          .forceSensing = settings_.forceSensing && sensorAvailable_,
          .sensorWorks = sensorProblem_.empty()};
}

std::string AppModel::statusLine() const {
  ProgramStatus unnamed = status();
  if (unnamed.quietApp) unnamed.quietApp = "";
  return StatusTexts(services_.words).statusLine(unnamed);
}

// Microphone

void AppModel::updateMicMonitor() {
  if (preview_) return;
  if (settings_.quietDuringCalls || comforts_.maskWhileRecorded) {
    micMonitor_->start();
  } else {
    micMonitor_->stop();
    outputRecorded_ = false;
  }
}

void AppModel::micChanged(bool inUse) {
  if (inUse == micInUse_) return;
  const auto before = gate().state();
  micInUse_ = inUse;
  if (gate().state() != before) conductor_->apply(effectiveSettings(), false);
  emit micInUseChanged();
  emit statusChanged();
}

void AppModel::outputRecordedChanged(bool recorded) {
  outputRecorded_ = recorded;
  applyMask();
}

void AppModel::applyMask() {
  conductor_->setMasked(isMasked());
  emit statusChanged();
}

// Locked screen

void AppModel::lockChanged(bool isLocked) {
  isLocked_ = isLocked;
  if (!preview_) conductor_->apply(effectiveSettings(), false);
  emit statusChanged();
}

// The application in front

void AppModel::quietChanged() {
  conductor_->apply(effectiveSettings(), false);
  emit statusChanged();
}

// Motion sensor

void AppModel::sensorChanged(const std::string& problem) {
  sensorProblem_ = problem;
  if (!problem.empty()) logLine("force can't be sensed: " + problem);
  emit statusChanged();
}

// Output

OutputChoice::Services AppModel::outputServices() {
  return {.memory = comforts_.outputs,
          .saveMemory =
              [this] {
                if (!preview_) comfortsSaver_.saveSoon();
              },
          .play = [this](const std::string& id) { conductor_->chooseOutput(id); },
          .volume = [this] { return settings_.volume; },
          .setVolume = [this](float volume) { adoptVolume(volume); },
          .setBoost = [this](float boost) { conductor_->setBoost(boost); }};
}

// Nobody has touched anything: an engine that rests goes on resting.
void AppModel::adoptVolume(float volume) {
  if (std::exchange(settings_.volume, volume) == volume) return;
  saver_.saveSoon();
  conductor_->apply(effectiveSettings(), false);
  emit settingsChanged();
  emit statusChanged();
}

void AppModel::outputProblemChanged(const std::string& problem) {
  soundProblem_ = problem.empty() ? "" : "No sound: " + problem + ".";
  emit outputChanged();
  emit statusChanged();
}

// Shortcut

void AppModel::registerShortcut() {
  shortcut_->choose(settings_.shortcutEnabled && !preview_, settings_.shortcut);
  emit shortcutChanged();
}

void AppModel::captureShortcut(bool captures) {
  shortcut_->capture(captures);
  emit shortcutChanged();
}

bool AppModel::chooseShortcut(uint32_t scanCode, Modifiers modifiers) {
  const auto chosen = shortcut_->of(scanCode, modifiers);
  if (!chosen) return false;
  EngineSettings changed = settings_;
  changed.shortcut = *chosen;
  setSettings(changed);
  return true;
}

// Packs

void AppModel::startPacks(const std::string& selectedID) {
  played_ = std::make_unique<PlayedPack>(PlayedPack::Services{.main = services_.main,
                                                              .loader = services_.loader,
                                                              .loadPack = services_.loadPack,
                                                              .conductor = *conductor_});
  packs_ = std::make_unique<PackSelection>(
      PackSelection::Services{.main = services_.main,
                              .loader = services_.loader,
                              .findPacks = services_.findPacks,
                              .loadPack = services_.loadPack,
                              .keepChoice =
                                  [this](const std::string& id) {
                                    if (!preview_)
                                      services_.settings.writeText(selectedPackKey, id);
                                  },
                              .play =
                                  [this](std::shared_ptr<const LoadedPack> pack, bool audition) {
                                    played_->select(std::move(pack), audition && !preview_);
                                  }},
      selectedID);
  connect(packs_.get(), &PackSelection::packsChanged, this, &AppModel::packsChanged);
  connect(packs_.get(), &PackSelection::packsChanged, this, &AppModel::statusChanged);
  connect(packs_.get(), &PackSelection::selectedChanged, this, &AppModel::selectedPackChanged);
  connect(packs_.get(), &PackSelection::selectedChanged, this, &AppModel::statusChanged);
  connect(packs_.get(), &PackSelection::loaded, this, &AppModel::selectedPackChanged);
  connect(packs_.get(), &PackSelection::errorChanged, this, &AppModel::packErrorChanged);
  connect(packs_.get(), &PackSelection::errorChanged, this, &AppModel::statusChanged);
}

void AppModel::packAdded(const std::string& id) {
  refreshPacks();
  setSelectedPackID(id);
  guide_.packsAdded();
}

// Recording one's own keyboard

RecordingGuide::Services AppModel::guideServices() {
  return {.main = services_.main,
          .worker = services_.adding,
          .makeCapture = services_.makeSoundCapture,
          .setSilent =
              [this](bool silent) {
                isSilent_ = silent;
                conductor_->apply(effectiveSettings(), true);
                emit statusChanged();
              },
          .play =
              [this](const std::filesystem::path& folder) {
                folder.empty() ? played_->endTrial() : played_->tryOut(folder);
                conductor_->apply(effectiveSettings(), true);
              },
          .keep = [this](const std::filesystem::path& folder) { shelf_.add({folder}); }};
}

void AppModel::removePack(const std::string& id) {
  const PackInfo* const pack = packs_->withID(id);
  if (pack == nullptr) return;
  const std::string selected = selectedPackID();
  if (!shelf_.discard(*pack)) return;
  selectedBeforeRemoval_ = selected;
  lookForPacks();
}

void AppModel::undoRemoval() {
  if (!shelf_.bringBack()) return;
  lookForPacks();
  setSelectedPackID(selectedBeforeRemoval_);
}

// The panel's other actions

void AppModel::lookForPacks() {
  packs_->refresh();
  packs_->loadWhereMissing(false);
}

void AppModel::menuOpened() {
  lookForPacks();
  if (!preview_) keyAccess_->look();
  registerShortcut();
  if (!preview_) conductor_->findOutputs();
  if (!preview_) quietApps_->setAsked(true);
}

void AppModel::menuClosed() {
  quietApps_->setAsked(false);
}

void AppModel::audition() {
  conductor_->audition();
}

void AppModel::playOneKey() {
  if (!preview_) conductor_->demonstrateKey();
}

void AppModel::mute() {
  EngineSettings changed = settings_;
  if (settings_.volume > 0) volumeBeforeMute_ = settings_.volume;
  changed.volume = settings_.volume > 0 ? 0 : volumeBeforeMute_;
  setSettings(changed);
}

void AppModel::readLoginItem() {
  const bool enabled = services_.loginItem.isEnabled();
  if (enabled == launchAtLogin_) return;
  launchAtLogin_ = enabled;
  emit launchAtLoginChanged();
}

void AppModel::setLaunchAtLogin(bool on) {
  const std::string problem = services_.loginItem.setEnabled(on);
  if (!problem.empty()) logLine("launch at login change failed: " + problem);
  loginItemProblem_ = problem.empty() ? "" : "This can't be changed: " + problem + ".";
  readLoginItem();
  emit launchAtLoginChanged();  // the switch may have to go back
}

void AppModel::openPacksFolder() {
  const std::string problem = services_.workspace.openPacksFolder();
  if (!problem.empty()) logLine("packs folder can't be shown: " + problem);
  packsFolderProblem_ = problem.empty() ? "" : "The packs folder can't be shown: " + problem + ".";
  emit packsFolderProblemChanged();
}

void AppModel::keepWideKeyAccess() {
  Comforts changed = comforts_;
  changed.keepsWideKeyAccess = true;
  setComforts(changed);
  keyAccess_->look();
}

void AppModel::relaunch() {
  const std::string problem = services_.workspace.relaunch();
  if (!problem.empty()) {
    logLine("can't start again: " + problem);
    return;
  }
  services_.workspace.terminate();
}

void AppModel::quit() {
  services_.workspace.terminate();
}

}  // namespace tobrin
