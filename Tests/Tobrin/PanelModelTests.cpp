#include <QLocale>
#include <QUrl>

#include <sstream>

#include "AppModelFixture.h"
#include "Support/KeptText.h"
#include "Support/TempFolder.h"

namespace tobrin::testing {
namespace {

class PanelModelTest : public AppModelTest {
 protected:
  PanelModelTest() { QLocale::setDefault(QLocale::c()); }

  /// Notes all that is to be seen of what was done.
  void after(const std::string& what, double milliseconds = 0) {
    advance(milliseconds);
    seen_ += what + "\n" + changes();
    for (const std::string& action : std::exchange(desktop_.actions, {}))
      seen_ += "  desktop: " + action + "\n";
    std::istringstream log(std::exchange(log_, {}));
    for (std::string line; std::getline(log, line);)
      seen_ += "  log: " + line + "\n";
    if (const int writes = std::exchange(settings_.writes, 0))
      seen_ += "  saved: " + std::to_string(writes) + "\n";
  }
  std::string changes() {
    std::string all;
    for (Bindings& each : bindings_)
      all += each.changes();
    return all;
  }
  void press(uint16_t code) {
    QSignalSpy struck(panel_.get(), &PanelModel::keyStruck);
    keys_.press(code);
    after("key " + std::to_string(code));
    for (const auto& key : struck)
      seen_ += "  key struck: " + textOf(key) + "\n";
  }

  std::string seen_;
};

TEST_F(PanelModelTest, ShowsAndDoesWhatItMust) {
  keys_.allowed = false;
  desktop_.startsAtLogin = true;
  found_[0].isBundled = true;
  found_[0].summary = "First\nof all.";
  start();
  after("first start");
  panel_->openSettings();
  desktop_.refusal = "nobody agreed";
  panel_->openSettings();
  after("access is asked for, and refused");
  panel_->giveBackKeyAccess();
  after("and can't be given back");
  desktop_.refusal.clear();
  keys_.work(false);
  keys_.allowed = keys_.canGiveBack = true;
  panel_->openSettings();
  after("access, but no keys", 2900);
  seen_ += "  keyboards looked for: " + std::to_string(keys_.opens) + "\n";
  advance(200);
  panel_->menuOpened();
  after("for more than 3 s");
  keys_.work(true);
  panel_->openSettings();
  after("keys");
  for (const uint16_t code : std::initializer_list<uint16_t>{0, 49, 54, 200})
    press(code);
  for (int i = 0; i < 2; ++i) {
    for (Bindings& each : bindings_)
      each.setAll();
    after("all is set to something else");
    seen_ += "  " + model_->settings().toJson() + "\n";
  }
  panel_->setFixedTier(4);
  panel_->setShortcutIndex(9);
  after("there is no such choice");
  EXPECT_TRUE(panel_->chooseShortcut(48, Qt::AltModifier | Qt::ControlModifier));
  shortcuts_.answer = {ShortcutGrab::Result::taken, 0};
  EXPECT_FALSE(panel_->chooseShortcut(0, Qt::ShiftModifier));
  for (const quint32 modifier : {56U, 57U})
    EXPECT_FALSE(panel_->chooseShortcut(modifier, Qt::ControlModifier));
  EXPECT_FALSE(panel_->chooseShortcut(48, Qt::ShiftModifier)) << "Tab moves the focus";
  EXPECT_TRUE(panel_->chooseShortcut(0, Qt::ShiftModifier | Qt::MetaModifier));
  after("a shortcut that is taken");
  shortcuts_.answer = {ShortcutGrab::Result::failed, -9868};
  panel_->menuOpened();
  after("that fails");
  shortcuts_.reserved = true;
  panel_->menuOpened();
  after("that is the system's");
  shortcuts_.reserved = false;
  shortcuts_.answer = {};
  for (const ShortcutRoute route : {ShortcutRoute::shared, ShortcutRoute::desktop}) {
    shortcuts_.route = route;
    panel_->menuOpened();
    after("that works");
  }
  EXPECT_TRUE(panel_->chooseShortcut(2, Qt::AltModifier | Qt::ControlModifier));
  panel_->captureShortcut(true);
  after("while keys are pressed to choose it");
  panel_->captureShortcut(false);
  panel_->mute();
  after("muted");
  takeMicrophone(true);
  after("and in a call");
  panel_->setSoundsOn(false);
  after("and off");
  damaged_ = {"omega"};
  panel_->select("omega");
  look();  // it is shown as chosen before it is loaded
  after("and with a damaged pack");
  device_->lose("no sink");
  after("and without a sound server");
  device_->recover();
  takeMicrophone(false);
  panel_->select("leopold");
  panel_->setSoundsOn(true);
  panel_->mute();
  after("all is well again", 2000);
  const auto sounds = model_->conductor().audio().startedVoices();
  panel_->playOneKey();
  advance(500);
  device_->render(48000);
  EXPECT_EQ(model_->conductor().audio().startedVoices(), sounds + 2) << "a press and its release";
  SoundOutputs outputs{
      .present = {{"usb.b", "Head\nset"}, {"usb.a", "Head\nset"}, {"card", "Speakers"}},
      .used = "card"};
  device_->callbacks.outputsChanged(outputs);
  after("two of three output devices have the same name");
  panel_->more()->sound()->setOutputIndex(2);
  after("the second of them is chosen");
  EXPECT_EQ(device_->chosen, "usb.b");
  outputs.present.erase(outputs.present.begin());
  device_->callbacks.outputsChanged(outputs);
  after("and unplugged");
  panel_->more()->sound()->setOutputIndex(2);
  panel_->more()->sound()->setOutputIndex(-1);
  panel_->more()->sound()->setOutputIndex(4);
  after("and chosen once more");
  panel_->more()->sound()->setOutputIndex(0);
  after("the default is chosen");
  EXPECT_EQ(device_->chosen, "");
  front_({.app = "Browser"});
  after("a browser is in front of the panel");
  QuietAppsModel& quiet = *panel_->more()->quietApps();
  quiet.addCandidate();
  quiet.addCandidate();
  after("and to be quiet in");
  front_({.knowledge = Front::Knowledge::windowManagerDoesNotTell});
  after("nobody tells what is in front");
  for (const int index : {1, -1, 0})
    quiet.remove(index);
  HeldBackModel& heldBack = *panel_->more()->heldBack();
  for (const char* name : {" My\nbot", "my BOT", " "})
    heldBack.add(name);
  for (const int index : {0, -1, 99})
    heldBack.remove(index);
  after("other keyboards are held back");
  heldBack.takeUsual();
  panel_->menuClosed();
  after("the usual ones");
  for (const char* refusal : {"no file manager", ""}) {
    desktop_.refusal = refusal;
    panel_->openPacksFolder();
    panel_->setLaunchAtLogin(true);
    panel_->relaunch();
    panel_->quit();
    after("the desktop says: " + desktop_.refusal);
  }
  expectKeptText(seen_, "Tobrin/panel.txt");
}

TEST_F(PanelModelTest, ShowsPacksComeAndGo) {
  device_->refusal = "no server";
  keys_.allowed = false;
  found_[0].isBundled = true;
  start();
  (void)changes();  // all that is there at first
  after("without a sound server");
  keys_.allowed = true;
  panel_->menuOpened();
  after("with keys");
  device_->recover();
  after("with a sound server");
  PackShelfModel& shelf = *panel_->shelf();
  const auto add = [&](std::initializer_list<const char*> names) {
    QList<QUrl> places;
    for (const char* name : names)
      places.append(QUrl(name));
    shelf.add(places);
  };
  whileAdding_ = [&, isFirst = true]() mutable {
    main_.runUntil(main_.now() + machTicks(1100));
    look();
    if (std::exchange(isFirst, false)) add({"file:///x/later.zip"});
  };
  shelf.setAsking(PackShelfModel::Asking::byDropping);
  after("asked to drop packs");
  add({"file:///x/one/pack.json", "http://x/two.zip", "file:///x/mouse.zip", "file:///x/full.zip"});
  after("three are added, and a later one", 6000);
  shelf.panelClosed();
  whileAdding_ = [&] { shelf.cancel(); };
  add({"file:///x/three.zip", "file:///x/four.zip"});
  after("called off");
  whileAdding_ = [&, round = 0]() mutable {  // the first is slow
    if (round++ == 0) main_.runUntil(main_.now() + machTicks(1100));
    look();
  };
  const TempFolder folder;
  std::filesystem::create_directory(folder.path() / "silent.json");
  const std::string realFolder = "file://" + (folder.path() / "silent.json").string();
  for (const char* source : {"file:///x/odd.zip", "file:///x/empty/", "file:///x/huge/config.yaml",
                             realFolder.c_str()}) {
    shelf.panelClosed();
    add({source});
    after("one that is refused");
  }
  whileAdding_ = [] {};
  shelf.remove("alpha");
  after("bundled ones stay");
  desktop_.refusal = "it is held";
  shelf.remove("one");
  after("can't be removed");
  desktop_.refusal.clear();
  for (const std::errc reason : {std::errc::cross_device_link, std::errc::file_exists}) {
    diskRefusal_ = reason;
    shelf.remove("one");
    after("can't be removed either");
  }
  diskRefusal_ = {};
  shelf.remove("one");
  after("another than the chosen one is removed", 11'900);
  after("12 s later", 100);
  shelf.bringBack();
  after("too late");
  shelf.remove("later");
  after("the chosen one is removed", 6000);
  shelf.bringBack();
  after("and brought back");
  shelf.remove("later");
  after("removed again", 7000);
  desktop_.refusal = "it is full";
  shelf.bringBack();
  after("and can't be brought back");
  desktop_.refusal.clear();
  panel_->select("leopold");
  shelf.remove("leopold");
  after("one in the middle is removed");
  found_.back().name = "Omega";
  panel_->menuOpened();
  after("one has another name");
  expectKeptText(seen_, "Tobrin/panel-packs.txt");
  add({"file:///x/never.zip"});
  model_.reset();
  advance(0);
  EXPECT_EQ(found_.size(), 2U) << "the program has ended";
}

TEST_F(PanelModelTest, ShowsTheLastKeyDuringACall) {
  start(AppModel::Preview{
      .pack = "alpha",
      .micInUse = true,
      .reading = ForceReading{
          .code = 40, .position = 2.6f, .relative = 1.74f, .peak = 0.0427f, .sensed = true}});
  after("a preview");
  expectKeptText(seen_, "Tobrin/panel-force.txt");
}

}  // namespace
}  // namespace tobrin::testing
