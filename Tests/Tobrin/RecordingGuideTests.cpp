#include "Model/RecordingGuide.h"

#include <gtest/gtest.h>

#include <utility>

#include "Base/Key.h"
#include "Base/MachTime.h"
#include "Base/VirtualQueue.h"
#include "ComposedKeys.h"
#include "Packs/PackManifest.h"
#include "Support/KeptText.h"
#include "Support/ScriptedCapture.h"
#include "Support/TempFolder.h"

namespace tobrin {
namespace {

using Step = RecordingGuide::Step;

class RecordingGuideTest : public ::testing::Test {
 protected:
  RecordingGuideTest() {
    capture_->inputs = {{"webcam", "Webcam", false, false}, {"desk", "Desk", true, false}};
    QObject::connect(&guide_, &RecordingGuide::changed, [this] { lookAt(guide_); });
    QObject::connect(&guide_, &RecordingGuide::levelChanged, [this] { ++levels_; });
    setenv("TMPDIR", temporary_.path().c_str(), 1);
  }
  ~RecordingGuideTest() override { unsetenv("TMPDIR"); }

  /// Notes what somebody sees, where that has changed.
  void lookAt(const RecordingGuide& guide) {
    std::string now = "  stage " + std::to_string(static_cast<int>(guide.stage())) + ", step " +
                      std::to_string(static_cast<int>(guide.step())) + ":";
    for (const Step step : RecordingGuide::allSteps)
      now += " " + std::to_string(guide.have(step)) + "/" +
             std::to_string(RecordingGuide::wanted(step));
    now += ", verdict " + std::to_string(static_cast<int>(guide.live().verdict)) + ", " +
           guide.input() + " (" + capture_->input + ")" + (guide.isPaused() ? ", paused" : "") +
           (guide.problem().empty() ? "" : ", " + guide.problem()) + "\n";
    if (std::exchange(shown_, now) != now) seen_ += now;
  }
  /// A line of the story, and what was asked of the program meanwhile.
  void after(const std::string& what) {
    seen_ += what + "; " + std::to_string(std::exchange(levels_, 0)) + " levels\n";
  }
  /// Of letters.
  std::string tiers() const {
    std::string text;
    for (const std::size_t takes : guide_.live().takes[index(KeyGroup::alpha)])
      text += " " + std::to_string(takes);
    return text;
  }
  static std::string nameOf(const std::filesystem::path& pack) {
    return pack.empty() ? "the selected pack" : PackInfo::read(pack, false).name;
  }

  void advance(double milliseconds) {
    for (double passed = 0; passed < milliseconds; passed += 100) {
      main_.runUntil(main_.now() + machTicks(100));
      worker_.runUntil(main_.now());
      main_.runUntil(main_.now());
    }
  }

  /// Another key for each number, of its group.
  static uint16_t codeFor(const RecordedKey& key) {
    constexpr Key single[] = {Key::a, Key::space, Key::enter, Key::backspace, Key::leftShift};
    if (key.group != KeyGroup::alpha) return codeOf(single[index(key.group)]);
    return static_cast<uint16_t>(key.number % 10);  // letters
  }

  /// Somebody types the composed keys, all of them hard, from one second of them to another, 20
  /// times as fast.
  void type(double fromSecond, double toSecond) {
    const auto at = [&](double second) { return begin_ + static_cast<int64_t>(second * 1e9); };
    auto key = composed_.recording.keys.begin();
    for (double second = fromSecond; second < toSecond; second += 0.1) {
      const auto first = composed_.recording.samples.begin() + std::lround(second * 48000);
      capture_->hear(at(second), {first, first + 4800});
      const auto time = [&] { return static_cast<double>(key->time) * 1e-9; };
      for (; key != composed_.recording.keys.end() && time() < second + 0.1; ++key) {
        if (time() < second) continue;
        const uint16_t code = codeFor(*key);
        guide_.addKey({code, key->action, static_cast<uint64_t>(begin_ + key->time)});
        for (const bool sensed : {true, false})
          guide_.addForce({.code = code, .position = sensed ? 3.0F : 0.0F, .sensed = sensed});
      }
      if (std::lround(second * 10) % 20 == 0) advance(100);
    }
    advance(100);
  }

  /// From the first page to the making of a pack.
  void recordSomething() {
    guide_.begin();
    guide_.startTyping();
    type(0, 20);
    guide_.finish();
  }

  const testing::TempFolder temporary_;  // all files of the guide
  const ComposedKeys composed_ = composeKeys({.seconds = 62});
  const int64_t begin_ = static_cast<int64_t>(machNow());
  VirtualQueue main_{"main"};
  VirtualQueue worker_{"worker"};
  std::shared_ptr<testing::CaptureScript> capture_ = std::make_shared<testing::CaptureScript>();
  std::string seen_, shown_;
  bool soundSystem_ = true;
  int levels_ = 0;  ///< how often the level was told
  std::filesystem::path kept_;
  RecordingGuide guide_{
      {.main = main_,
       .worker = worker_,
       .makeCapture =
           [this] {
             if (!soundSystem_) throw std::runtime_error("there is no sound system");
             return std::make_unique<testing::ScriptedCapture>(capture_);
           },
       .setSilent = [this](bool silent) { seen_ += silent ? "  silent\n" : "  not silent\n"; },
       .play =
           [this](const std::filesystem::path& pack) { seen_ += "  plays " + nameOf(pack) + "\n"; },
       .keep =
           [this](const std::filesystem::path& pack) {
             kept_ = pack;
             seen_ += "  keeps " + nameOf(pack) + "\n";
           }}};
};

TEST_F(RecordingGuideTest, LeadsFromAMicrophoneToAPackAndLeavesNothingBehind) {
  capture_->problem = "there is no microphone";
  guide_.begin();
  guide_.begin();
  after("there is none");
  capture_->problem.clear();
  guide_.chooseInput("desk");
  type(0, 10);
  guide_.chooseInput("webcam");
  after("another one, after some typing");
  advance(200);
  guide_.pause();
  guide_.skip();
  guide_.finish();
  guide_.keep("x");
  after("nothing to pause, skip, finish or keep yet");
  guide_.startTyping();
  guide_.finish();
  advance(100);
  after("nothing to make a pack of");
  guide_.resume();
  type(0, 20);
  after("20 s, takes from soft to hard:" + tiers());
  guide_.pause();
  guide_.pause();
  advance(200);
  after("a pause");
  guide_.resume();
  type(25, 60);
  after("on to the next step by itself");
  guide_.finish();
  advance(100);
  after("a pack, of " + std::to_string(guide_.goodCount()) + " good sounds of " +
        std::to_string(guide_.keyCount()));
  guide_.listen();
  guide_.typeMore();
  after("more");
  for (std::size_t step = 0; step < RecordingGuide::allSteps.size(); ++step)
    guide_.skip();
  after("no step is left");
  advance(100);
  guide_.packsAdded();
  guide_.keepFailed("nobody asked");
  guide_.keep("Board");
  advance(100);
  after("kept");
  guide_.keepFailed("no room");
  after("there is no room");
  guide_.keep("");
  advance(100);
  const auto folder = kept_;
  EXPECT_TRUE(std::filesystem::exists(folder));
  guide_.packsAdded();
  after("put among the others");
  EXPECT_FALSE(std::filesystem::exists(folder));
  recordSomething();
  guide_.leave();
  guide_.leave();
  guide_.keepFailed("too late");
  guide_.begin();
  advance(1000);
  after("left while a pack was made, and begun again");
  guide_.leave();
  advance(1000);
  EXPECT_EQ(main_.nextDue(), std::nullopt) << "nobody looks any more";
  EXPECT_EQ(testing::entriesIn(temporary_.path()), 0) << "what was typed while a pack was made";
  testing::expectKeptText(seen_, "Tobrin/recording-guide.txt");
}

TEST_F(RecordingGuideTest, KeepsThePackOfAClosedPanelAndSaysWhatIsMissing) {
  setenv("TMPDIR", "nowhere", 1);
  recordSomething();
  advance(100);
  EXPECT_EQ(guide_.problem(), "no temporary folder in nowhere: No such file or directory");
  EXPECT_EQ(guide_.stage(), RecordingGuide::Stage::typing);
  setenv("TMPDIR", temporary_.path().c_str(), 1);
  guide_.finish();
  advance(100);
  seen_.clear();
  guide_.keep("Board");
  guide_.panelClosed();
  guide_.packsAdded();  // somebody's, earlier
  guide_.keepFailed("somebody's, earlier");
  advance(100);
  EXPECT_NE(seen_.find("  keeps Board\n"), std::string::npos) << seen_;
  EXPECT_TRUE(std::filesystem::exists(kept_));
  guide_.packsAdded();
  EXPECT_EQ(testing::entriesIn(temporary_.path()), 0);
  for (const bool types : {true, false}) {
    soundSystem_ = true;
    guide_.begin();
    soundSystem_ = false;
    types ? guide_.startTyping() : guide_.chooseInput("desk");
    advance(1000);
    EXPECT_EQ(guide_.problem(), "there is no sound system");
    EXPECT_EQ(guide_.stage(), RecordingGuide::Stage::microphone);
    guide_.panelClosed();
    EXPECT_EQ(guide_.stage(), RecordingGuide::Stage::away);
  }
}

}  // namespace
}  // namespace tobrin
