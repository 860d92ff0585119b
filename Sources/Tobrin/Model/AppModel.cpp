#include "Model/AppModel.h"

#include "Base/Log.h"

namespace tobrin {

AppModel::AppModel(AppServices services, std::optional<Preview> preview)
    : services_(std::move(services)),
      preview_(preview.has_value()),
      sensorAvailable_(services_.motionSource != nullptr || (preview && preview->reading)),
      choices_(services_.settings, services_.main, preview_),
      outputs_(outputServices()),
      desktop_(services_.loginItem, services_.workspace),
      surroundings_(surroundingsServices(), preview && preview->micInUse),
      self_(std::make_shared<AppModel*>(this)),
      guide_(guideServices()) {
  if (preview) lastForce_ = preview->reading;
  surroundings_.setWish(surroundingsWish());
  makeConductor();
  makeMonitor();
  shortcut_ = std::make_unique<ShortcutChoice>(*services_.shortcutService, services_.words,
                                               std::move(services_.keyOfScanCode),
                                               [this] { onMain([this] { toggleEnabled(); }); });
  const auto pack = preview ? preview->pack : choices_.packID();
  makePacks(pack.value_or(defaultPackID));
  wirePacks();
  wireCallbacks();
  start();
}

AppModel::~AppModel() {
  *self_ = nullptr;
  services_.workspace.setOnWake(nullptr);
  services_.workspace.setOnTerminate(nullptr);
  services_.shortcutService->setOnChanged(nullptr);
  shortcut_->unregister();
  monitor_->stop();
  conductor_->setOnForce(nullptr);
  conductor_->shutdown();
}

void AppModel::onMain(std::function<void()> task) {
  services_.main.async([self = self_, run = std::move(task)] {
    if (*self != nullptr) run();
  });
}

std::unique_ptr<AudioOutput> AppModel::makeOutput() {
  auto output = std::make_unique<AudioOutput>(
      std::move(services_.audioDevice), [this](const SoundOutputs& outputs) {
        onMain([this, outputs] { outputs_.outputsChanged(outputs); });
      });
  output->setOnProblem([this](const std::string& problem) {
    onMain([this, problem] { outputProblemChanged(problem); });
  });
  return output;
}

std::unique_ptr<ForceSensor> AppModel::makeSensor() {
  if (services_.motionSource == nullptr) return nullptr;
  return std::make_unique<ForceSensor>(std::move(services_.motionSource),
                                       [onStart = services_.onThreadStart] {
                                         if (onStart) onStart(ForceSensor::threadName);
                                       });
}

void AppModel::makeConductor() {
  conductor_ = std::make_unique<Conductor>(services_.conductorQueue, makeOutput(), makeSensor());
  conductor_->setOnForce([this](const ForceReading& reading) {
    guide_.addForce(reading);
    onMain([this, reading] {
      lastForce_ = reading;
      emit lastForceChanged();
    });
  });
  conductor_->setOnSensorProblem(
      [this](const std::string& problem) { onMain([this, problem] { sensorChanged(problem); }); });
}

void AppModel::makeMonitor() {
  const auto observe = [this](const KeyEvent& event) {
    services_.shortcutService->observe(event);
    guide_.addKey(event);
  };
  monitor_ = std::make_unique<KeyMonitor>(
      std::move(services_.keySource), [this](const KeyEvent& event) { conductor_->handle(event); },
      KeyMonitorOptions{.onThreadStart = services_.onThreadStart,
                        .observer = observe,
                        .onChange = [this] { onMain([this] { keyAccess_->monitorChanged(); }); }});
  applyToMonitor();
  const auto changed = [this] {
    emit permissionChanged();
    emit statusChanged();
  };
  keyAccess_ = std::make_unique<KeyAccess>(
      KeyAccess::Services{.monitor = *monitor_,
                          .main = services_.main,
                          .workspace = services_.workspace,
                          .keepsWide = [this] { return comforts().keepsWideKeyAccess; },
                          .onChange = changed});
}

void AppModel::wireCallbacks() {
  services_.shortcutService->setOnChanged([this] { onMain([this] { registerShortcut(); }); });
  connect(&surroundings_, &Surroundings::quietChanged, this, &AppModel::applyQuietly);
  connect(&surroundings_, &Surroundings::maskChanged, this, &AppModel::applyMask);
  connect(&surroundings_, &Surroundings::candidateChanged, this, &AppModel::candidateChanged);
  services_.workspace.setOnWake([this] {
    conductor_->systemDidWake();
    surroundings_.systemDidWake();
  });
  services_.workspace.setOnTerminate([this] {
    choices_.save();  // first what must not be lost: a sound device may keep the end waiting
    conductor_->shutdown();
  });
}

void AppModel::wirePacks() {
  const PackSelection* const selection = &packs_->selection();
  connect(selection, &PackSelection::packsChanged, this, &AppModel::packsChanged);
  connect(selection, &PackSelection::errorChanged, this, &AppModel::packErrorChanged);
  connect(packs_.get(), &PackCollection::selectedChanged, this, &AppModel::selectedPackChanged);
  for (const auto changed :
       {&AppModel::packsChanged, &AppModel::packErrorChanged, &AppModel::selectedPackChanged})
    connect(this, changed, this, &AppModel::statusChanged);
  connect(packs_.get(), &PackCollection::added, &guide_, &RecordingGuide::packsAdded);
  connect(&shelf(), &PackShelf::changed, &guide_, [this] {
    if (shelf().problem()) guide_.keepFailed(shelf().problem()->reason);
  });
}

void AppModel::start() {
  packs_->selection().start();
  registerShortcut();
  if (preview_) return;
  outputs_.start();
  surroundings_.start();
  conductor_->apply(effectiveSettings(), true);
  keyAccess_->start();
  desktop_.readLaunchAtLogin();
}

// Settings

void AppModel::setSettings(const EngineSettings& changed) {
  if (changed == settings()) return;
  const EngineSettings old = settings();
  choices_.setSettings(changed);
  if (old.shortcutEnabled != changed.shortcutEnabled || old.shortcut != changed.shortcut)
    registerShortcut();
  surroundings_.setWish(surroundingsWish());
  if (old.volume != changed.volume) outputs_.volumeChanged();
  if (!preview_) conductor_->apply(effectiveSettings(), true);
  emit settingsChanged();
  emit statusChanged();
}

void AppModel::setComforts(const Comforts& changed) {
  if (changed == comforts()) return;
  choices_.setComforts(changed);
  applyToMonitor();
  surroundings_.setWish(surroundingsWish());
  if (!preview_) conductor_->apply(effectiveSettings(), false);
  applyMask();
  emit settingsChanged();
}

void AppModel::applyToMonitor() {
  monitor_->holdBack(comforts().heldBackKeyboards);
  monitor_->hearMouse(!comforts().mouseSounds  ? MouseHearing::nothing
                      : comforts().wheelSounds ? MouseHearing::buttonsAndWheel
                                               : MouseHearing::buttons);
}

void AppModel::toggleEnabled() {
  PlaybackGate toggled = gate();
  toggled.toggle();
  change(&EngineSettings::enabled, toggled.enabled);
}

PlaybackGate AppModel::gate() const {
  return {settings().enabled, settings().quietDuringCalls, surroundings_.micInUse()};
}

EngineSettings AppModel::effectiveSettings() const {
  EngineSettings effective = settings();
  // While a keyboard is recorded its force is measured, and nothing is heard.
  const bool onlyMeasures = isSilent_ && settings().forceSensing && sensorAvailable_;
  const bool plays = packs_->played().isTrying() || onlyMeasures ||
                     (gate().isPlaying() && !isSilent_ && !surroundings_.quietApp().isQuiet);
  effective.enabled = plays && !surroundings_.isQuietForLock();
  if (onlyMeasures) effective.volume = 0;
  effective.forceSensing = settings().forceSensing && sensorAvailable_;
  return effective;
}

SoundState AppModel::soundState() const {
  return tobrin::soundState(
      {.hasKeyAccess = hasPermission() && !keyAccess_->state().needsRelaunch,
       .hasSound = soundProblem_.empty(),
       .hasPack = !packError(),
       .isOn = settings().enabled,
       .isRecording = isSilent_,
       .pause = surroundings_.isQuietForLock() ? KeyPause::locked : keyAccess_->state().pause,
       .isInCall = gate().state() == PlaybackGate::State::pausedForCall,
       .isQuietForApp = surroundings_.quietApp().isQuiet,
       .volume = settings().volume});
}

ProgramStatus AppModel::status() const {
  const PackInfo* pack = selectedPack();
  return {.sound = soundState(),
          .isMasked = surroundings_.isMasked(),
          .quietApp = surroundings_.quietApp().app,
          .packName = pack != nullptr ? std::optional(pack->name) : std::nullopt,
          .forceSensing = settings().forceSensing && sensorAvailable_,
          .sensorWorks = sensorProblem_.empty()};
}

std::string AppModel::statusLine() const {
  ProgramStatus unnamed = status();
  if (unnamed.quietApp) unnamed.quietApp = "";
  return StatusTexts(services_.words).statusLine(unnamed);
}

// What goes on around the program

Surroundings::Services AppModel::surroundingsServices() {
  return {.main = services_.main,
          .micQueue = services_.micQueue,
          .workspace = services_.workspace,
          .micSource = std::move(services_.micSource),
          .frontWindow = std::move(services_.frontWindow),
          .describeApp = services_.describeApp};
}

Surroundings::Wish AppModel::surroundingsWish() const {
  return {.quietDuringCalls = settings().quietDuringCalls,
          .quietWhileLocked = comforts().quietWhileLocked,
          .maskWhileRecorded = comforts().maskWhileRecorded,
          .quietApps = comforts().quiet};
}

// Nobody has touched anything: an engine that rests goes on resting.
void AppModel::applyQuietly() {
  conductor_->apply(effectiveSettings(), false);
  emit statusChanged();
}

void AppModel::applyMask() {
  conductor_->setMasked(surroundings_.isMasked());
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
  return {.memory = choices_.outputs(),
          .saveMemory = [this] { choices_.saveOutputs(); },
          .play = [this](const std::string& id) { conductor_->chooseOutput(id); },
          .volume = [this] { return settings().volume; },
          .setVolume = [this](float volume) { adoptVolume(volume); },
          .setBoost = [this](float boost) { conductor_->setBoost(boost); }};
}

void AppModel::adoptVolume(float volume) {
  if (settings().volume == volume) return;
  EngineSettings changed = settings();
  changed.volume = volume;
  choices_.setSettings(changed);
  emit settingsChanged();
  applyQuietly();
}

void AppModel::outputProblemChanged(const std::string& problem) {
  soundProblem_ = problem.empty() ? "" : "No sound: " + problem + ".";
  emit outputChanged();
  emit statusChanged();
}

// Shortcut

void AppModel::registerShortcut() {
  shortcut_->choose(settings().shortcutEnabled && !preview_, settings().shortcut);
  emit shortcutChanged();
}

void AppModel::captureShortcut(bool captures) {
  shortcut_->capture(captures);
  emit shortcutChanged();
}

bool AppModel::chooseShortcut(uint32_t scanCode, Modifiers modifiers) {
  const auto chosen = shortcut_->of(scanCode, modifiers);
  if (!chosen) return false;
  change(&EngineSettings::shortcut, *chosen);
  return true;
}

// Packs

void AppModel::makePacks(const std::string& selectedID) {
  packs_ = std::make_unique<PackCollection>(
      PackCollection::Services{
          .main = services_.main,
          .loader = services_.loader,
          .adding = services_.adding,
          .conductor = *conductor_,
          .findPacks = services_.findPacks,
          .loadPack = services_.loadPack,
          .addPack = services_.addPack,
          .discardPack = services_.discardPack,
          .keepChoice = [this](const std::string& id) { choices_.setPackID(id); },
          .auditions = !preview_},
      selectedID);
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
                folder.empty() ? packs_->played().endTrial() : packs_->played().tryOut(folder);
                conductor_->apply(effectiveSettings(), true);
              },
          .keep = [this](const std::filesystem::path& folder) { shelf().add({folder}); }};
}

// The panel's other actions

void AppModel::menuOpened() {
  lookForPacks();
  if (!preview_) keyAccess_->look();
  registerShortcut();
  if (!preview_) conductor_->findOutputs();
  if (!preview_) surroundings_.quietApps().setAsked(true);
}

void AppModel::menuClosed() {
  surroundings_.quietApps().setAsked(false);
}

void AppModel::audition() {
  conductor_->audition();
}

void AppModel::playOneKey() {
  if (!preview_) conductor_->demonstrateKey();
}

void AppModel::mute() {
  const float volume = settings().volume;
  if (volume > 0) volumeBeforeMute_ = volume;
  change(&EngineSettings::volume, volume > 0 ? 0 : volumeBeforeMute_);
}

void AppModel::keepWideKeyAccess() {
  change(&Comforts::keepsWideKeyAccess, true);
  keyAccess_->look();
}

}  // namespace tobrin
