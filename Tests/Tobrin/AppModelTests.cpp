#include "Model/AppModel.h"

#include "AppModelFixture.h"
#include "Support/Eventually.h"
#include "Support/TempFolder.h"

namespace tobrin::testing {
namespace {

TEST_F(AppModelTest, ChoosesAPackAtTheStart) {
  struct Row {
    const char* label;
    std::vector<std::string> found;
    const char* saved;  // JSON
    const char* loaded;
    int writes;
  };
  const Row rows[] = {
      {"first start", {"alpha", "leopold"}, "", "leopold", 0},
      {"chosen before", {"alpha", "leopold"}, "\"alpha\"", "alpha", 0},
      {"chosen one is gone", {"alpha", "omega"}, "\"old\"", "alpha", 1},
      {"no default pack", {"omega"}, "", "omega", 1},
      {"not a text", {"leopold"}, "17", "leopold", 0},
      {"no packs", {}, "\"old\"", "none", 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.label);
    settings_ = {};
    if (*row.saved != '\0') settings_.values[SavedChoices::selectedPackKey] = row.saved;
    found_.clear();
    for (const std::string& id : row.found)
      found_.push_back(pack(id));
    start();
    advance(0);
    EXPECT_EQ(loadedPack(), row.loaded);
    EXPECT_EQ(settings_.writes, row.writes);
    if (row.writes > 0) {
      EXPECT_EQ(settings_.readText(SavedChoices::selectedPackKey), std::string(row.loaded));
    }
    EXPECT_EQ(isHeard(), row.writes > 0) << "only another choice than the user's is auditioned";
    EXPECT_EQ(model_->isFirstStart(), *row.saved == '\0' || row.saved[0] != '"');
    EXPECT_FALSE(start().isFirstStart()) << "though nobody chose a pack";
  }
}

TEST_F(AppModelTest, ALaterChoiceOvertakesALoad) {
  AppModel& model = start();
  advance(0);
  model.setSelectedPackID("alpha");
  loader_.runUntil(loader_.now());  // decoded, on its way to the main thread
  damaged_ = {"leopold"};
  model.setSelectedPackID("leopold");
  loader_.runUntil(loader_.now());
  model.setSelectedPackID("omega");
  advance(0);
  EXPECT_EQ(loadedPack(), "omega");
  EXPECT_EQ(model.packError(), std::nullopt);
}

TEST_F(AppModelTest, ADamagedPackIsNamedAndSilent) {
  AppModel& model = start();
  advance(0);
  damaged_ = {"omega"};
  model.setSelectedPackID("omega");
  EXPECT_FALSE(isHeard());
  EXPECT_EQ(model.packError(), "The omega couldn't load: it is damaged");
  model.audition();
  EXPECT_FALSE(isHeard()) << "another pack must not play under this one's name";

  damaged_.clear();
  model.setSelectedPackID("omega");
  EXPECT_TRUE(isHeard()) << "mended, and chosen again";
  EXPECT_EQ(model.packError(), std::nullopt);
  damaged_ = {"omega"};
  for (int i = 0; i < 6; ++i)
    (void)isHeard();  // until the phrase is over
  model.setSelectedPackID("omega");
  EXPECT_FALSE(isHeard()) << "chosen already";
  EXPECT_EQ(loadedPack(), "omega") << "it is there already";
  EXPECT_EQ(settings_.writes, 2) << "the first start, and one choice";
}

TEST_F(AppModelTest, OpeningThePanelLoadsWhatIsNot) {
  const auto late = std::exchange(found_, {});
  settings_.values[SavedChoices::selectedPackKey] = "\"omega\"";
  AppModel& model = start();
  advance(0);
  EXPECT_EQ(model.packError(), "No sound packs found.");
  EXPECT_EQ(model.statusLine(), "No pack · Fixed strength");
  found_ = late;
  model.menuOpened();
  EXPECT_FALSE(isHeard()) << "nothing was chosen";
  EXPECT_EQ(loadedPack(), "omega");
  EXPECT_EQ(model.packError(), std::nullopt);
  found_.pop_back();
  model.menuOpened();
  advance(0);
  EXPECT_EQ(loadedPack(), "alpha") << "the first one, where the chosen one is gone";
  found_ = late;
  model.setSelectedPackID("omega");
  advance(0);

  damaged_ = {"omega"};
  found_.back().directory = "elsewhere";  // another of that id
  model.menuOpened();
  advance(0);
  EXPECT_EQ(loadedPack(), "none");
}

TEST_F(AppModelTest, LoadsTheChosenPackAgainOnceItWasReplaced) {
  const TempFolder folder;
  const auto manifest = folder.write("pack.json", "{}");
  found_[1].directory = folder.path();
  AppModel& model = start();
  advance(0);
  damaged_ = {"leopold"};
  model.lookForPacks();
  advance(0);
  EXPECT_EQ(loadedPack(), "leopold") << "the same as before";
  const auto written = std::filesystem::last_write_time(manifest);
  std::filesystem::last_write_time(manifest, written + std::chrono::seconds(1));
  model.lookForPacks();
  advance(0);
  EXPECT_EQ(loadedPack(), "none");
}

TEST_F(AppModelTest, BrokenSettingsAreKeptAsideAndUnchangedOnesNotWritten) {
  settings_.values[SavedChoices::settingsKey] = R"({"volume": "loud"})";
  EXPECT_EQ(start().settings(), EngineSettings());
  EXPECT_EQ(settings_.aside[SavedChoices::settingsKey], R"({"volume": "loud"})");
  change([](EngineSettings&) {});
  EXPECT_EQ(settings_.writes, 0) << "nothing changed";
}

TEST_F(AppModelTest, SavesOnceChangesEndAndAtTheEnd) {
  start();
  const auto drag = [this](float from) {
    for (int i = 1; i <= 20; ++i) {
      change([&](EngineSettings& settings) {
        settings.volume = from + 0.01F * static_cast<float>(i);
      });
      advance(50);
    }
  };
  const auto savedVolume = [this] {
    return EngineSettings::fromJson(settings_.values.at(SavedChoices::settingsKey)).volume;
  };
  drag(0);
  EXPECT_EQ(settings_.writes, 0);
  advance(250);
  EXPECT_EQ(settings_.writes, 1);
  EXPECT_FLOAT_EQ(savedVolume(), 0.2F);
  drag(0.3F);
  model_->setComforts({.mouseSounds = true});
  desktop_.onTerminate();
  EXPECT_FLOAT_EQ(savedVolume(), 0.5F);
  EXPECT_TRUE(Comforts::fromJson(settings_.values[SavedChoices::comfortsKey]).mouseSounds);
  drag(0.6F);
  model_.reset();
  EXPECT_FLOAT_EQ(savedVolume(), 0.8F);
  advance(1000);
  EXPECT_EQ(settings_.writes, 4) << "nothing is left to do";
}

TEST_F(AppModelTest, LetsGoOfAShortcutThatIsNotWanted) {
  AppModel& model = start();
  shortcuts_.reserved = true;
  model.menuOpened();
  EXPECT_FALSE(shortcuts_.pressed) << "holds nothing it should not";
  EXPECT_EQ(log_,
            "Tobrin: shortcut Ctrl+Alt+Super+K unavailable: " + *model.shortcut().problem() + "\n");
  shortcuts_.reserved = false;
  shortcuts_.changed();  // the settings were slow to come: nothing is reserved
  advance(0);
  const auto late = shortcuts_.pressed;
  change([](EngineSettings& settings) { settings.shortcutEnabled = false; });
  EXPECT_FALSE(shortcuts_.pressed);
  late();  // pressed just before the program ends
  model_.reset();
  EXPECT_FALSE(shortcuts_.changed) << "its thread may outlive the model's parts";
  advance(0);
}

TEST_F(AppModelTest, SensesForceWhereThereIsASensor) {
  start();
  advance(0);
  EXPECT_EQ(model_->statusLine(), "The leopold · Fixed strength");
  EXPECT_FALSE(model_->effectiveSettings().forceSensing || model_->sensorAvailable());

  hasSensor_ = true;
  AppModel& model = start();
  advance(0);
  EXPECT_EQ(model.statusLine(), "The leopold · Force sensing on");
  motion_.awaitOpens(1);
  const uint64_t now = machNow();
  motion_.send({{0, 0, 1}, now - 1});
  for (int i = 0; i < 1000; ++i)  // shakes evenly for some seconds
    motion_.send({{0, 0, 1 + (i % 2 == 0 ? 0.05 : -0.05)}, now + machTicks(5.0 * i)});
  advance(5000);
  const auto stroke = [&] {
    keys_.press(0);
    keys_.release(0);
    advance(20);
    return model.lastForce().value_or(ForceReading());
  };
  const ForceReading strong = stroke();
  EXPECT_TRUE(strong.sensed);
  EXPECT_NEAR(strong.peak, 0.05, 0.004);
  EXPECT_GT(strong.relative, 1.8f);
  change([](EngineSettings& settings) { settings.sensitivity = 0.5f; });
  EXPECT_NEAR(stroke().relative / strong.relative, 0.5, 0.05);

  change([](EngineSettings& settings) { settings.forceSensing = false; });
  EXPECT_EQ(model.statusLine(), "The leopold · Fixed strength");
  EXPECT_FALSE(stroke().sensed);
  EXPECT_EQ(motion_.closes, 1);
  motion_.work(false);
  change([](EngineSettings& settings) { settings.forceSensing = true; });
  EXPECT_TRUE(eventually([&] {
    advance(0);
    return model.statusLine() == "The leopold · Fixed strength, sensor fails";
  }));
  EXPECT_NE(log_.find("Tobrin: force can't be sensed: the test says no\n"), std::string::npos);
}

TEST_F(AppModelTest, MeasuresForceInSilenceWhileAKeyboardIsRecorded) {
  capture_->inputs = {{"desk", "Desk", true, false}};
  for (const bool hasSensor : {false, true}) {
    hasSensor_ = hasSensor;
    AppModel& model = start();
    model.recordingGuide().begin();
    isHeard();  // what is left of the first phrase
    EXPECT_EQ(model.statusLine(), "Recording your keyboard");
    EXPECT_EQ(model.effectiveSettings().enabled, hasSensor);
    EXPECT_EQ(model.effectiveSettings().volume, hasSensor ? 0 : EngineSettings().volume);
    keys_.press(0);
    EXPECT_FALSE(isHeard());
    keys_.release(0);
    model.recordingGuide().leave();
    EXPECT_EQ(model.effectiveSettings().volume, EngineSettings().volume);
    advance(100);
    keys_.press(0);
    EXPECT_TRUE(isHeard());
    keys_.release(0);
  }
}

TEST_F(AppModelTest, APackThatIsAddedMeanwhileDoesNotEndARecording) {
  AppModel& model = start();
  model.recordingGuide().begin();
  model.shelf().add({"/downloads/new.zip"});
  advance(100);
  EXPECT_EQ(model.selectedPackID(), "new");
  EXPECT_EQ(model.recordingGuide().stage(), RecordingGuide::Stage::microphone);
}

TEST_F(AppModelTest, MasksKeysWhileTheSoundIsRecorded) {
  microphone_->activity.outputRecorded = true;
  AppModel& model = start();
  /// Whether presses of one key sound from different places, and its releases.
  const auto isMasked = [&] {
    std::set<long> presses, releases;
    for (int i = 0; i < 12; ++i) {
      for (auto* places : {&presses, &releases}) {
        places == &presses ? keys_.press(0) : keys_.release(0);
        advance(20);
        const auto [left, right] = device_->render(256);
        places->insert(std::lround(1000 * left.back() / right.back()));
        isHeard();  // until it has died away
      }
    }
    EXPECT_EQ(presses.size() > 1, releases.size() > 1);
    return presses.size() > 1;
  };
  change([](EngineSettings& settings) { settings.forceSensing = false; });
  EXPECT_EQ(model.statusLine(), "Masked while the sound is recorded");
  EXPECT_TRUE(isMasked());
  change([](EngineSettings& settings) { settings.quietDuringCalls = false; });
  EXPECT_TRUE(microphone_->changed) << "watched for its own sake";
  model.setComforts({.maskWhileRecorded = false});
  advance(0);
  EXPECT_EQ(model.statusLine(), "The leopold · Fixed strength");
  EXPECT_FALSE(isMasked());
  EXPECT_FALSE(microphone_->changed) << "nobody watches any more";
  EXPECT_FALSE(start().comforts().maskWhileRecorded) << "saved";

  settings_.values[SavedChoices::comfortsKey] = "{";
  EXPECT_TRUE(start().comforts().maskWhileRecorded) << "what is damaged has its default";
  advance(0);
  microphone_->activity.outputRecorded = false;
  microphone_->changed();
  advance(0);
  EXPECT_EQ(model_->statusLine(), "The leopold · Fixed strength");
  EXPECT_FALSE(isMasked());
}

TEST_F(AppModelTest, EachDeviceHasItsLoudness) {
  const auto use = [&](const std::string& device) {
    device_->callbacks.outputsChanged({.present = {}, .used = device});
    advance(0);
  };
  const auto stroke = [&] {
    keys_.press(0);
    isHeard();  // meanwhile the volume glides
    keys_.release(0);
    isHeard();
    keys_.press(0);
    return loudest();
  };
  start();
  change([](EngineSettings& settings) { settings.volume = 0.5F; });
  use("speakers");
  use("headset");
  EXPECT_EQ(model_->settings().volume, 0.5F) << "a new one takes the volume of the moment";
  change([](EngineSettings& settings) { settings.volume = 0.25F; });
  const float plain = stroke();
  model_->outputs().setBoost(1.5F);
  EXPECT_NEAR(stroke() / plain, 1.5, 0.2);
  use("");
  EXPECT_EQ(model_->settings().volume, 0.25F) << "none is used for a moment";
  device_->running = false;
  const int starts = device_->starts;
  use("speakers");
  EXPECT_EQ(model_->settings().volume, 0.5F);
  EXPECT_EQ(model_->conductor().audio().volume(), 0.5F);
  EXPECT_EQ(model_->outputs().boost(), 1);
  EXPECT_EQ(device_->starts, starts) << "nobody typed";
  model_->outputs().choose("headset");
  advance(0);
  device_->chosen.clear();
  start();
  advance(0);
  EXPECT_EQ(device_->chosen, "headset") << "remembered";
  use("headset");
  EXPECT_EQ(model_->settings().volume, 0.25F);
  EXPECT_EQ(model_->outputs().boost(), 1.5F);
  EXPECT_NEAR(stroke() / plain, 1.5, 0.2);
  use("speakers");
  EXPECT_NEAR(stroke() / plain, 2, 0.2) << "twice the volume, and no boost";
  start();
  change([](EngineSettings& settings) { settings.volume = 0.75F; });
  use("headset");
  EXPECT_EQ(model_->settings().volume, 0.75F) << "set before it was known which one plays";
  EXPECT_EQ(model_->outputs().boost(), 1.5F) << "and that alone";
  start();
  model_->outputs().setBoost(1.25F);
  use("headset");
  EXPECT_EQ(model_->settings().volume, 0.75F);
  EXPECT_EQ(model_->outputs().boost(), 1.25F);
}

TEST_F(AppModelTest, HoldsBackTheKeyboardsOfTheSavedList) {
  for (const char* const listed : {"ydotool", "Macro pad"}) {
    start().setComforts({.heldBackKeyboards = {listed}});
    start();
    isHeard();
    for (const char* const keyboard : {"ydotool", "Macro pad"}) {
      for (const auto type : {KeySource::EventType::keyDown, KeySource::EventType::keyUp}) {
        keys_.send({.type = type, .code = 0, .keyboard = keyboard});
        EXPECT_EQ(isHeard(), keyboard != std::string(listed)) << keyboard;
      }
    }
  }
}

TEST_F(AppModelTest, PausesDuringCalls) {
  AppModel& model = start();
  model.setComforts({.maskWhileRecorded = false});
  advance(0);
  const int starts = device_->starts;
  microphone_->activity.inputRunningSomewhere = true;  // no notice came while the machine slept
  desktop_.onWake();
  advance(500);  // a device that takes nothing is not waited for longer
  EXPECT_GT(device_->starts, starts);
  EXPECT_EQ(model.statusLine(), "Paused while the mic is in use");
  EXPECT_FALSE(model.effectiveSettings().enabled);
  EXPECT_TRUE(model.settings().enabled) << "the user's own switch stays";
  EXPECT_FALSE(device_->running);

  change([](EngineSettings& settings) { settings.enabled = false; });
  EXPECT_EQ(model.statusLine(), "Off");
  change([](EngineSettings& settings) { settings.enabled = true; });
  EXPECT_FALSE(device_->running);

  change([](EngineSettings& settings) { settings.quietDuringCalls = false; });
  EXPECT_TRUE(device_->running) << "resumes at once";
  EXPECT_FALSE(microphone_->changed) << "nobody watches any more";

  takeMicrophone(false);
  change([](EngineSettings& settings) { settings.quietDuringCalls = true; });
  EXPECT_FALSE(model.micInUse()) << "a call that ended unwatched is forgotten";
  model.audition();
  advance(0);
  EXPECT_TRUE(device_->running);
  desktop_.onTerminate();
  EXPECT_FALSE(device_->running);
  model_.reset();
  EXPECT_FALSE(desktop_.onWake || desktop_.onTerminate || desktop_.onLock);
}

TEST_F(AppModelTest, SaysWhyNoKeysComeAndIsSilentWhileTheScreenIsLocked) {
  AppModel& model = start();
  advance(0);
  const std::string playing = model.statusLine();
  for (const auto& [pause, status] :
       {std::pair(KeyPause::inBackground, "Paused while another session is in front"),
        {KeyPause::locked, "Paused while the screen is locked"}}) {
    keys_.setPause(pause);
    advance(0);
    EXPECT_EQ(model.statusLine(), status);
    keys_.setPause(KeyPause::none);
    advance(0);
    EXPECT_EQ(model.statusLine(), playing);
  }
  for (const bool isWanted : {true, false, true}) {
    model.setComforts({.quietWhileLocked = isWanted});
    model.audition();
    desktop_.onLock(true);
    EXPECT_EQ(model.statusLine(), isWanted ? "Paused while the screen is locked" : playing);
    advance(100);
    EXPECT_EQ(isHeard(), !isWanted);
    desktop_.onLock(false);
    EXPECT_EQ(model.statusLine(), playing);
    model.audition();
    EXPECT_TRUE(isHeard()) << "again";
  }
  model.setComforts({.quietWhileLocked = false});
  EXPECT_FALSE(start().comforts().quietWhileLocked) << "remembered";
}

TEST_F(AppModelTest, IsQuietInChosenAppsAndInFullScreenAndLooksOnlyThen) {
  AppModel& model = start();
  advance(0);
  const std::string playing = model.statusLine();
  const auto show = [&](const Front& front) {
    front_(front);
    advance(0);
  };
  const auto wish = [&](const QuietApps::Wish& quiet) {
    model.setComforts({.quiet = quiet});
    advance(0);
  };
  EXPECT_FALSE(front_) << "nobody asks";
  model.menuOpened();
  show({.app = "Browser"});
  show({.app = "tobrin"});
  EXPECT_EQ(model.quietApps().candidate(), "Browser") << "the one before the panel";
  model.menuClosed();
  EXPECT_FALSE(front_);
  EXPECT_EQ(model.quietApps().candidate(), "");

  wish({.apps = {{"browser", "Secret"}}});
  const struct {
    Front front;
    const char *inChosen, *inFullScreen;
  } rows[] = {{{.app = "Browser"}, "Quiet in this app", nullptr},
              {{.app = "Editor", .fillsScreen = true}, nullptr, "Quiet in full screen"},
              {{.app = "", .fillsScreen = true}, nullptr, "Quiet in full screen"},
              {{.app = "app.tobrin.Tobrin", .fillsScreen = true}, nullptr, nullptr},
              {{.knowledge = Front::Knowledge::desktopDoesNotTell}, nullptr, nullptr},
              {{}, nullptr, nullptr}};
  for (const bool isChosen : {true, false}) {
    if (!isChosen) wish({.inFullScreen = true});
    for (const auto& row : rows) {
      const char* const quiet = isChosen ? row.inChosen : row.inFullScreen;
      show(row.front);
      EXPECT_EQ(model.statusLine(), quiet != nullptr ? quiet : playing) << row.front.app;
      keys_.press(0);
      EXPECT_EQ(isHeard(), quiet == nullptr) << row.front.app;
      keys_.release(0);
      isHeard();  // until it has died away
    }
  }
  wish({.apps = {{"browser", "Secret"}}});
  show({.app = "Browser"});
  EXPECT_EQ(model.status().quietApp, "Secret");
  show({.knowledge = Front::Knowledge::desktopDoesNotTell});
  const auto lost = front_;
  model.menuOpened();
  lost({.app = "Editor"});
  advance(0);
  EXPECT_EQ(model.quietApps().candidate(), "") << "the desktop is asked again";
  show({.app = "Browser"});
  EXPECT_EQ(model.quietApps().candidate(), "Browser");
  model.menuClosed();
  EXPECT_EQ(log_.find("Secret") + log_.find("Browser"), 2 * std::string::npos);
  const auto late = front_;
  wish({});
  EXPECT_EQ(model.statusLine(), playing);
  EXPECT_FALSE(front_);
  late({.app = "Browser"});  // was on its way
  wish({.apps = {{"browser", "Secret"}}});
  EXPECT_EQ(model.statusLine(), playing) << "until it is known what is in front";
  model_.reset();
  EXPECT_FALSE(front_);
  start();
  EXPECT_TRUE(front_) << "remembered";
}

TEST_F(AppModelTest, WaitsForAccessToKeys) {
  keys_.allowed = false;
  AppModel& model = start();
  EXPECT_EQ(model.statusLine(), "Needs access to the keyboard");
  change([](EngineSettings& settings) { settings.enabled = false; });
  EXPECT_EQ(model.statusLine(), "Needs access to the keyboard") << "before it says \"Off\"";
  EXPECT_EQ(keys_.requests, 1);
  advance(3000);
  EXPECT_EQ(keys_.requests, 1) << "asks once, not at every look";

  keys_.allowed = true;
  advance(1400);
  EXPECT_FALSE(model.listening()) << "looks every 1.5 s";
  advance(100);
  EXPECT_TRUE(model.listening());
  advance(0);
  EXPECT_EQ(main_.nextDue(), std::nullopt) << "and no more once it hears";

  keys_.allowed = false;
  desktop_.hasNewVersion = true;  // whose service for keys serves no other
  keys_.lose();
  EXPECT_TRUE(eventually([&] {
    advance(0);
    return model.statusLine() == "Needs access to the keyboard";
  }));
  EXPECT_FALSE(model.listening());
  EXPECT_EQ(keys_.requests, 1);
  EXPECT_TRUE(panel_->needsRelaunch());
  keys_.allowed = true;
  advance(1500);
  EXPECT_TRUE(model.listening()) << "given back";
}

TEST_F(AppModelTest, OffersToReplaceAnOlderAccessUntilTheUserSaysNo) {
  start().menuOpened();
  EXPECT_FALSE(model_->keyAccess().offersNarrower());
  desktop_.isAccessWide = true;
  model_->menuOpened();
  EXPECT_TRUE(model_->keyAccess().offersNarrower());
  desktop_.refusal = "it was not allowed";
  model_->keyAccess().narrow();
  EXPECT_EQ(model_->keyAccess().problem(), "Access to keys can't be changed: it was not allowed");
  EXPECT_TRUE(model_->keyAccess().offersNarrower()) << "all is as it was";
  desktop_.refusal.clear();
  model_->keyAccess().narrow();
  EXPECT_FALSE(model_->keyAccess().offersNarrower());
  EXPECT_EQ(model_->keyAccess().problem(), "");

  desktop_.isAccessWide = true;
  model_->menuOpened();
  model_->keepWideKeyAccess();
  EXPECT_EQ(std::count(desktop_.actions.begin(), desktop_.actions.end(), "narrow access"), 2);
  start().menuOpened();
  EXPECT_FALSE(model_->keyAccess().offersNarrower()) << "remembered";
}

TEST_F(AppModelTest, APreviewLeavesNoTrace) {
  AppModel& model = start(AppModel::Preview{.pack = "omega"});
  advance(0);
  EXPECT_EQ(loadedPack(), "omega");
  model.menuOpened();
  change([](EngineSettings& settings) {
    settings.volume = 0.5F;
    settings.shortcut = Hotkey::presets()[1];
  });
  model.setComforts({.quiet = {.inFullScreen = true}});
  model.setSelectedPackID("alpha");
  model.playOneKey();
  advance(1000);
  EXPECT_FALSE(model.listening() || shortcuts_.pressed || microphone_->changed || desktop_.onLock ||
               front_);
  EXPECT_EQ(device_->starts + device_->searches, 0);
  model_.reset();
  EXPECT_EQ(settings_.writes, 0);
}

}  // namespace
}  // namespace tobrin::testing
