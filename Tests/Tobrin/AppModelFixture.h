/// The application's model with everything around it under a test's control: queues on virtual
/// time, settings in memory, and a desktop, keyboard, microphone and sound device that do what a
/// test says.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "Base/Log.h"
#include "Base/MachTime.h"
#include "Base/VirtualQueue.h"
#include "Bindings.h"
#include "Desktop/LinuxWords.h"
#include "Importing/ImportError.h"
#include "Model/AppModel.h"
#include "Panel/PanelModel.h"
#include "Support/HandDrivenDevice.h"
#include "Support/ScriptedCapture.h"
#include "Support/ScriptedKeySource.h"
#include "Support/ScriptedMicSource.h"
#include "Support/ScriptedMotionSource.h"
#include "Support/TestPack.h"

namespace tobrin::testing {

struct MemorySettings final : SettingsStore {
  std::map<std::string, std::string, std::less<>> values, aside;
  int writes = 0;

  [[nodiscard]] std::optional<std::string> read(std::string_view key) const override {
    const auto found = values.find(key);
    return found == values.end() ? std::nullopt : std::optional(found->second);
  }
  bool write(std::string_view key, std::string_view json) override {
    ++writes;
    values.insert_or_assign(std::string(key), std::string(json));
    return true;
  }
  void keepAside(std::string_view key) override {
    aside.insert_or_assign(std::string(key), values.at(std::string(key)));
  }
};

/// Session and login item in one.
struct TestDesktop final : Workspace, LoginItem {
  bool startsAtLogin = false;
  bool isAccessWide = false;  ///< an older grant is in force
  bool hasNewVersion = false;
  std::string refusal;  ///< why actions fail; empty: they succeed
  std::vector<std::string> actions;
  std::function<void()> onWake, onTerminate;
  std::function<void(bool)> onLock;

  [[nodiscard]] bool isEnabled() const override { return startsAtLogin; }
  std::string setEnabled(bool on) override {
    if (refusal.empty()) startsAtLogin = on;
    return refusal;
  }
  void setOnWake(std::function<void()> call) override { onWake = std::move(call); }
  void setOnLock(std::function<void(bool)> call) override { onLock = std::move(call); }
  void setOnTerminate(std::function<void()> call) override { onTerminate = std::move(call); }
  std::string openPacksFolder() override { return act("folder"); }
  void openKeyAccessSettings(OnEnd onEnd) override { onEnd(act("access")); }
  bool canNarrowKeyAccess() override { return isAccessWide; }
  void narrowKeyAccess(OnEnd onEnd) override {
    const std::string problem = act("narrow access");
    isAccessWide = isAccessWide && !problem.empty();
    onEnd(problem);
  }
  void giveBackKeyAccess(OnEnd onEnd) override { onEnd(act("no access")); }
  [[nodiscard]] bool isUpdated() const override { return hasNewVersion; }
  std::string relaunch() override { return act("relaunch"); }
  void terminate() override { actions.emplace_back("terminate"); }

 private:
  std::string act(const char* action) {
    actions.emplace_back(action);
    return refusal;
  }
};

struct ShortcutDesk {
  ShortcutGrab answer;
  bool reserved = false;
  std::function<void()> pressed;  ///< empty while nothing is grabbed
  ShortcutRoute route = ShortcutRoute::exclusive;
  std::function<void()> changed;
};

class DeskShortcuts final : public ShortcutService {
 public:
  explicit DeskShortcuts(ShortcutDesk& desk) : desk_(desk) {}
  bool isReserved(const Hotkey&) override { return desk_.reserved; }
  ShortcutGrab grab(const Hotkey&, std::function<void()> pressed) override {
    EXPECT_FALSE(desk_.reserved);
    desk_.pressed = desk_.answer == ShortcutGrab{} ? std::move(pressed) : nullptr;
    return desk_.answer;
  }
  void release() override { desk_.pressed = nullptr; }
  std::optional<std::string> keyName(uint32_t) override { return std::nullopt; }
  void setOnChanged(std::function<void()> changed) override { desk_.changed = std::move(changed); }
  void observe(const KeyEvent&) override {}
  [[nodiscard]] ShortcutRoute route() const override { return desk_.route; }

 private:
  ShortcutDesk& desk_;
};

/// Who follows the focus; empty while nobody does.
struct ScriptedFrontWindow final : FrontWindow {
  explicit ScriptedFrontWindow(Changed& follower) : follower_(follower) {}
  void start(Changed changed) override { follower_ = std::move(changed); }
  void stop() override { follower_ = nullptr; }
  Changed& follower_;
};

class AppModelTest : public ::testing::Test {
 protected:
  AppModelTest() {
    setLogSink([this](const std::string& line) { log_ += line + "\n"; });
  }
  ~AppModelTest() override {
    model_.reset();
    setLogSink(nullptr);
  }

  static PackInfo pack(const std::string& id) {
    return {.id = id, .name = "The " + id, .kind = id, .summary = {}, .directory = {}};
  }

  /// Starts the program; nothing is loaded until time passes.
  AppModel& start(std::optional<AppModel::Preview> preview = std::nullopt) {
    model_.reset();
    model_ = std::make_unique<AppModel>(
        AppServices{
            .main = main_,
            .loader = loader_,
            .adding = adding_,
            .conductorQueue = conductorQueue_,
            .micQueue = micQueue_,
            .settings = settings_,
            .loginItem = desktop_,
            .workspace = desktop_,
            .words = linuxWords,
            .audioDevice = std::make_unique<HandDrivenDevice>(device_),
            .motionSource = hasSensor_ ? std::make_unique<ScriptedMotionSource>(motion_) : nullptr,
            .keySource = std::make_unique<ScriptedKeySource>(keys_),
            .shortcutService = std::make_unique<DeskShortcuts>(shortcuts_),
            .micSource = std::make_unique<ScriptedMicSource>(microphone_),
            .frontWindow = std::make_unique<ScriptedFrontWindow>(front_),
            .describeApp =
                [](const std::string& id) {
                  return AppDescription{"The " + id, ""};
                },
            .makeSoundCapture = [this] { return std::make_unique<ScriptedCapture>(capture_); },
            .onThreadStart = nullptr,
            .keyOfScanCode =
                [](uint32_t code) { return std::optional(static_cast<uint16_t>(code)); },
            .findPacks =
                [this] {
                  return FoundPacks{found_, {}};
                },
            .loadPack = [this](const PackInfo& info) { return load(info); },
            .addPack = [this](const auto& source, const auto& tell) { return add(source, tell); },
            .discardPack = [this](const PackInfo& info) { return discard(info); }},
        std::move(preview));
    panel_ = std::make_unique<PanelModel>(*model_);
    bindings_.clear();
    for (QObject* part :
         {static_cast<QObject*>(panel_.get()), static_cast<QObject*>(panel_->shelf()),
          static_cast<QObject*>(panel_->more()), static_cast<QObject*>(panel_->more()->sound()),
          static_cast<QObject*>(panel_->more()->quietApps()),
          static_cast<QObject*>(panel_->more()->heldBack())})
      bindings_.emplace_back(*part);
    return *model_;
  }

  /// Lets the same time pass for all queues.
  void advance(double milliseconds) {
    constexpr double step = 50;
    for (double passed = 0; passed < milliseconds; passed += step)
      moveTo(main_.now() + machTicks(std::min(step, milliseconds - passed)));
    moveTo(main_.now());
    if (model_) look();
  }
  /// Looks at what the panel shows.
  void look() {
    for (Bindings& each : bindings_)
      each.look();
  }

  void change(const std::function<void(EngineSettings&)>& edit) {
    EngineSettings changed = model_->settings();
    edit(changed);
    model_->setSettings(changed);
    advance(0);
  }

  void takeMicrophone(bool taken) {
    microphone_->activity.inputRunningSomewhere = taken;
    if (microphone_->changed) microphone_->changed();
    advance(0);
  }

  [[nodiscard]] std::string loadedPack() const {
    return model_->loadedManifest() ? model_->loadedManifest()->id : "none";
  }
  /// Whether something sounds within half a second of the virtual time.
  bool isHeard() { return loudest() > 0; }
  /// How loud it gets within half a second, full scale at 1.
  float loudest() {
    float loudest = 0;
    for (int i = 0; i < 10; ++i) {
      advance(50);
      for (const float value : device_->render(2400).first)
        loudest = std::max(loudest, std::abs(value));
    }
    return loudest;
  }

  // The key monitor's clock is the machine's, and the virtual one starts with it.
  const uint64_t begin_ = machNow();
  VirtualQueue main_{"main", begin_}, loader_{"loader", begin_}, adding_{"adding", begin_},
      conductorQueue_{"conductor", begin_}, micQueue_{"mic", begin_};
  MemorySettings settings_;
  TestDesktop desktop_;
  KeyScript keys_;
  MotionScript motion_;
  bool hasSensor_ = false;
  ShortcutDesk shortcuts_;
  FrontWindow::Changed front_;
  std::shared_ptr<MicState> microphone_ = std::make_shared<MicState>();
  std::shared_ptr<CaptureScript> capture_ = std::make_shared<CaptureScript>();
  std::shared_ptr<HandDrivenDevice::Controls> device_ =
      std::make_shared<HandDrivenDevice::Controls>();
  std::vector<PackInfo> found_ = {pack("alpha"), pack("leopold"), pack("omega")};
  std::set<std::string> damaged_;  ///< ids of packs that do not load
  std::function<void()> whileAdding_ = [] {};
  std::errc diskRefusal_{};  ///< why packs can't be removed; zero: they can
  std::string log_;
  std::unique_ptr<AppModel> model_;
  std::unique_ptr<PanelModel> panel_;
  std::vector<Bindings> bindings_;  ///< what the panel shows

 private:
  std::shared_ptr<const LoadedPack> load(const PackInfo& info) {
    if (damaged_.contains(info.id)) throw std::runtime_error("it is damaged");
    return TestPack()
        .down(KeyGroup::alpha, Tier::medium, 0.2F)
        .up(KeyGroup::alpha, 0.1F)
        .make(info.id);
  }

  /// A source becomes a pack of its name, unless that is a reason against it.
  std::string add(const std::filesystem::path& source, const PackShelf::Progress& tell) {
    tell(0.5);
    whileAdding_();
    tell(0.75);
    using Kind = ImportError::Kind;
    const std::string id = (source.has_filename() ? source : source.parent_path()).stem();
    const std::map<std::string, Kind> refused = {{"mouse", Kind::mouse},
                                                 {"empty", Kind::noPack},
                                                 {"huge", Kind::tooLarge},
                                                 {"silent", Kind::noSounds}};
    if (refused.contains(id)) throw ImportError(refused.at(id), "it is " + id);
    if (id == "full")
      throw std::filesystem::filesystem_error("",
                                              std::make_error_code(std::errc::no_space_on_device));
    if (id == "odd") throw ImportError(ImportError::Kind::unreadable, "odd.zip: it is odd");
    found_.push_back(pack(id));
    return id;
  }

  std::function<void()> discard(const PackInfo& info) {
    const auto demandAgreement = [this] {
      if (diskRefusal_ != std::errc())
        throw std::filesystem::filesystem_error("", std::make_error_code(diskRefusal_));
      if (!desktop_.refusal.empty()) throw std::runtime_error(desktop_.refusal);
    };
    demandAgreement();
    const auto before = found_;
    std::erase(found_, info);
    return [this, before, demandAgreement] {
      demandAgreement();
      found_ = before;
    };
  }

  void moveTo(uint64_t time) {
    // A task on one queue may post to another: a second and a third round take those up.
    for (int round = 0; round < 3; ++round)
      for (VirtualQueue* queue : {&main_, &loader_, &adding_, &micQueue_, &conductorQueue_})
        queue->runUntil(time);
  }
};

}  // namespace tobrin::testing
