#include "Model/AppModel.h"

#include <algorithm>

#include "Base/Log.h"
#include "Input/KeyLayout.h"
#include "Packs/PackLibrary.h"

namespace tobrin {
namespace {

/// When the pack's description was written: with every new content of the pack. The earliest time
/// there is where it cannot be had.
std::filesystem::file_time_type stampOf(const PackInfo& pack) {
  std::error_code ignored;
  return std::filesystem::last_write_time(pack.directory / PackManifest::fileName, ignored);
}

}  // namespace

AppModel::AppModel(AppServices services, std::optional<Preview> preview)
    : services_(std::move(services)),
      preview_(preview.has_value()),
      sensorAvailable_(services_.motionSource != nullptr || (preview && preview->reading)),
      saver_(services_.main,
             [this] { return services_.settings.write(settingsKey, settings_.toJson()); }),
      shelf_(services_.main, services_.adding, services_.addPack, services_.discardPack),
      self_(std::make_shared<AppModel*>(this)) {
  readSavedState(preview);
  auto sensor = services_.motionSource != nullptr
                    ? std::make_unique<ForceSensor>(std::move(services_.motionSource),
                                                    [onStart = services_.onThreadStart] {
                                                      if (onStart) onStart(ForceSensor::threadName);
                                                    })
                    : nullptr;
  auto output = std::make_unique<AudioOutput>(std::move(services_.audioDevice));
  output->setOnProblem([this](const std::string& problem) {
    onMain([this, problem] { outputProblemChanged(problem); });
  });
  conductor_ =
      std::make_unique<Conductor>(services_.conductorQueue, std::move(output), std::move(sensor));
  wireCallbacks();
  start();
}

AppModel::~AppModel() {
  *self_ = nullptr;
  services_.workspace.setOnWake(nullptr);
  services_.workspace.setOnTerminate(nullptr);
  services_.shortcutService->setOnChanged(nullptr);
  hotkey_->unregister();
  monitor_->stop();
  micMonitor_->stop();
  conductor_->shutdown();
}

void AppModel::onMain(std::function<void()> task) {
  services_.main.async([self = self_, run = std::move(task)] {
    if (*self != nullptr) run();
  });
}

void AppModel::readSavedState(const std::optional<Preview>& preview) {
  selectedPackID_ = defaultPackID;
  if (preview) {
    selectedPackID_ = preview->pack.value_or(selectedPackID_);
    micInUse_ = preview->micInUse;
    lastForce_ = preview->reading;
    return;
  }
  if (const auto saved = services_.settings.read(settingsKey)) {
    try {
      settings_ = EngineSettings::fromJson(*saved);
    } catch (const std::exception& error) {
      services_.settings.keepAside(settingsKey);
      logLine(std::string("saved settings can't be read, using the defaults: ") + error.what());
    }
  }
  isFirstStart_ =
      !services_.settings.read(settingsKey) && !services_.settings.readText(selectedPackKey);
  selectedPackID_ = services_.settings.readText(selectedPackKey).value_or(selectedPackID_);
}

void AppModel::wireCallbacks() {
  conductor_->setOnForce([this](const ForceReading& reading) {
    onMain([this, reading] {
      lastForce_ = reading;
      emit lastForceChanged();
    });
  });
  conductor_->setOnSensorProblem(
      [this](const std::string& problem) { onMain([this, problem] { sensorChanged(problem); }); });
  monitor_ = std::make_unique<KeyMonitor>(
      std::move(services_.keySource), [this](const KeyEvent& event) { conductor_->handle(event); },
      KeyMonitorOptions{
          .onThreadStart = services_.onThreadStart,
          .observer = [this](const KeyEvent& e) { services_.shortcutService->observe(e); },
          .onChange = [this] { onMain([this] { keyAccess_->monitorChanged(); }); }});
  keyAccess_ = std::make_unique<KeyAccessWatch>(*monitor_, services_.main, [this] {
    emit permissionChanged();
    emit statusChanged();
  });
  hotkey_ = std::make_unique<GlobalHotkey>(*services_.shortcutService,
                                           [this] { onMain([this] { toggleEnabled(); }); });
  services_.shortcutService->setOnChanged([this] { onMain([this] { registerShortcut(); }); });
  micMonitor_ = std::make_unique<MicMonitor>(services_.micQueue, services_.main,
                                             std::move(services_.micSource));
  micMonitor_->setOnChange([this, self = self_](bool inUse) {
    if (*self != nullptr) micChanged(inUse);
  });
  connect(&shelf_, &PackShelf::added, this, &AppModel::packAdded);
  services_.workspace.setOnWake([this] {
    conductor_->systemDidWake();
    micMonitor_->refresh();
  });
  services_.workspace.setOnTerminate([this] {
    conductor_->shutdown();
    saver_.save();
  });
}

void AppModel::start() {
  refreshPacks();
  if (!packOfLoad_) loadSelectedPack(false);  // else another was chosen, which is played
  if (preview_) return;
  if (isFirstStart_) saver_.saveSoon();
  conductor_->apply(effectiveSettings(), true);
  keyAccess_->start();
  registerShortcut();
  updateMicMonitor();
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
  if (!preview_) conductor_->apply(effectiveSettings(), true);
  emit settingsChanged();
  emit statusChanged();
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
  effective.enabled = gate().isPlaying();
  effective.forceSensing = settings_.forceSensing && sensorAvailable_;
  return effective;
}

SoundState AppModel::soundState() const {
  return tobrin::soundState({.hasKeyAccess = hasPermission(),
                             .hasSound = soundProblem_.empty(),
                             .hasPack = !packError_,
                             .isOn = settings_.enabled,
                             .isInCall = gate().state() == PlaybackGate::State::pausedForCall,
                             .volume = settings_.volume});
}

ProgramStatus AppModel::status() const {
  const PackInfo* pack = selectedPack();
  return {.sound = soundState(),
          .packName = pack != nullptr ? std::optional(pack->name) : std::nullopt,
          .forceSensing = settings_.forceSensing && sensorAvailable_,
          .sensorWorks = sensorProblem_.empty()};
}

std::string AppModel::statusLine() const {
  return StatusTexts(services_.words).statusLine(status());
}

// Microphone

void AppModel::updateMicMonitor() {
  if (preview_) return;
  if (settings_.quietDuringCalls) {
    micMonitor_->start();
  } else {
    micMonitor_->stop();
  }
}

void AppModel::micChanged(bool inUse) {
  if (!settings_.quietDuringCalls || inUse == micInUse_) return;
  const auto before = gate().state();
  micInUse_ = inUse;
  if (gate().state() != before) conductor_->apply(effectiveSettings(), false);
  emit micInUseChanged();
  emit statusChanged();
}

// Motion sensor

void AppModel::sensorChanged(const std::string& problem) {
  sensorProblem_ = problem;
  if (!problem.empty()) logLine("force can't be sensed: " + problem);
  emit statusChanged();
}

// Output

void AppModel::outputProblemChanged(const std::string& problem) {
  soundProblem_ = problem.empty() ? "" : "No sound: " + problem + ".";
  emit outputChanged();
  emit statusChanged();
}

// Shortcut

void AppModel::registerShortcut() {
  if (preview_) return;
  shortcutStatus_ = hotkey_->registerHotkey(settings_.shortcutEnabled && !isCapturingShortcut_
                                                ? std::optional(settings_.shortcut)
                                                : std::nullopt);
  if (settings_.shortcutEnabled && shortcutProblem()) {
    logLine("shortcut " + display(settings_.shortcut) + " unavailable: " + *shortcutProblem());
  }
  emit shortcutStatusChanged();
}

void AppModel::captureShortcut(bool captures) {
  isCapturingShortcut_ = captures;
  registerShortcut();
}

bool AppModel::chooseShortcut(uint32_t scanCode, Modifiers modifiers) {
  const auto code = services_.keyOfScanCode(scanCode);
  const bool isOwnKey = code && keyGroupOf(*code) != KeyGroup::modifier;
  const bool isFree = (modifiers.rawValue & ~Modifiers::shift) != 0;
  if (!isOwnKey || !isFree) return false;
  EngineSettings changed = settings_;
  changed.shortcut = {.keyCode = *code, .modifiers = modifiers};
  setSettings(changed);
  return true;
}

std::string AppModel::display(const Hotkey& shortcut) const {
  return shortcut.spelledOut(services_.words, [this](uint32_t keyCode) {
    return services_.shortcutService->keyName(keyCode);
  });
}

std::vector<Hotkey> AppModel::offeredShortcuts() const {
  std::vector<Hotkey> offered(Hotkey::presets().begin(), Hotkey::presets().end());
  if (std::find(offered.begin(), offered.end(), settings_.shortcut) == offered.end()) {
    offered.push_back(settings_.shortcut);
  }
  return offered;
}

ShortcutRoute AppModel::shortcutRoute() const {
  const bool isActive = shortcutStatus_.kind == GlobalHotkey::Status::Kind::active;
  return isActive ? services_.shortcutService->route() : ShortcutRoute::exclusive;
}

std::string AppModel::shortcutHint() const {
  return StatusTexts(services_.words).shortcutHint(display(settings_.shortcut), shortcutRoute());
}

std::optional<std::string> AppModel::shortcutProblem() const {
  return StatusTexts(services_.words).shortcutProblem(shortcutStatus_, display(settings_.shortcut));
}

// Packs

const PackInfo* AppModel::selectedPack() const {
  const auto found = std::find_if(packs_.begin(), packs_.end(), [this](const PackInfo& pack) {
    return pack.id == selectedPackID_;
  });
  return found == packs_.end() ? nullptr : &*found;
}

void AppModel::setSelectedPackID(const std::string& id) {
  if (id == selectedPackID_) {
    loadWhereMissing(true);
    return;
  }
  selectedPackID_ = id;
  if (!preview_) services_.settings.writeText(selectedPackKey, id);
  emit selectedPackChanged();
  emit statusChanged();
  loadSelectedPack(true);
}

void AppModel::refreshPacks() {
  auto found = services_.discoverPacks();
  const PackInfo* const selected = selectedPack();
  const std::size_t place =
      selected != nullptr ? static_cast<std::size_t>(selected - packs_.data()) : 0;
  auto unusable = services_.unusableFolders();
  if (found != packs_ || unusable != unusable_) {
    packs_ = std::move(found);
    unusable_ = std::move(unusable);
    emit packsChanged();
    emit statusChanged();
  }
  if (selectedPack() == nullptr && !packs_.empty())
    select(packs_[std::min(place, packs_.size() - 1)]);
}

void AppModel::packAdded(const std::string& id) {
  refreshPacks();
  setSelectedPackID(id);
}

void AppModel::removePack(const std::string& id) {
  const auto pack = std::find_if(packs_.begin(), packs_.end(),
                                 [&](const PackInfo& each) { return each.id == id; });
  if (pack == packs_.end()) return;
  const std::string selected = selectedPackID_;
  if (!shelf_.discard(*pack)) return;
  selectedBeforeRemoval_ = selected;
  lookForPacks();
}

void AppModel::undoRemoval() {
  if (!shelf_.bringBack()) return;
  lookForPacks();
  setSelectedPackID(selectedBeforeRemoval_);
}

void AppModel::loadWhereMissing(bool audition) {
  const PackInfo* selected = selectedPack();
  if (selected == nullptr) return;
  if (packOfLoad_ != *selected || stampOfLoad_ != stampOf(*selected)) loadSelectedPack(audition);
}

void AppModel::loadSelectedPack(bool audition) {
  const uint64_t number = ++loadNumber_;
  const PackInfo* selected = selectedPack();
  packOfLoad_ = selected != nullptr ? std::optional(*selected) : std::nullopt;
  if (selected == nullptr) {
    install(nullptr, false);
    setPackError(packs_.empty() ? std::optional<std::string>("No sound packs found.")
                                : std::nullopt);
    return;
  }
  stampOfLoad_ = stampOf(*selected);
  services_.loader.async([this, self = self_, info = *selected, number, audition,
                          load = services_.loadPack, &main = services_.main] {
    std::shared_ptr<const LoadedPack> pack;
    std::string problem;
    try {
      pack = load(info);
    } catch (const std::exception& error) {
      problem = info.name + " couldn't load: " + error.what();
    }
    main.async([this, self, number, audition, pack, problem] {
      if (*self == nullptr || number != loadNumber_) return;
      if (pack == nullptr) packOfLoad_.reset();
      install(pack, audition && pack != nullptr);
      setPackError(pack != nullptr ? std::nullopt : std::optional(problem));
    });
  });
}

void AppModel::install(std::shared_ptr<const LoadedPack> pack, bool audition) {
  manifest_ = pack != nullptr ? std::optional(pack->manifest()) : std::nullopt;
  conductor_->setPack(std::move(pack));
  emit selectedPackChanged();
  if (audition && !preview_) conductor_->audition();
}

void AppModel::setPackError(std::optional<std::string> text) {
  if (text == packError_) return;
  packError_ = std::move(text);
  if (packError_) logLine(*packError_);
  emit packErrorChanged();
  emit statusChanged();
}

// The panel's other actions

void AppModel::lookForPacks() {
  refreshPacks();
  loadWhereMissing(false);
}

void AppModel::menuOpened() {
  lookForPacks();
  lookForKeyAccess();
  registerShortcut();
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

void AppModel::lookForKeyAccess() {
  if (!preview_) keyAccess_->look();
}

void AppModel::openKeyAccessSettings() {
  services_.workspace.openKeyAccessSettings([this, self = self_](const std::string& problem) {
    if (*self != nullptr) keyAccessSettled("Access to keys can't be set up: ", problem);
  });
}

void AppModel::giveBackKeyAccess() {
  services_.workspace.giveBackKeyAccess([this, self = self_](const std::string& problem) {
    if (*self != nullptr) keyAccessSettled("Access to keys can't be taken back: ", problem);
  });
}

bool AppModel::canGiveBackKeyAccess() const {
  return !preview_ && listening() && monitor_->canGiveBackPermission();
}

void AppModel::keyAccessSettled(const char* failure, const std::string& problem) {
  keyAccessProblem_ = problem.empty() ? "" : failure + problem;
  if (!problem.empty()) logLine(keyAccessProblem_);
  emit permissionChanged();
  lookForKeyAccess();
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
