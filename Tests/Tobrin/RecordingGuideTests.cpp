#include "Model/RecordingGuide.h"

#include <gtest/gtest.h>

#include "Base/Key.h"
#include "Base/MachTime.h"
#include "Base/VirtualQueue.h"
#include "ComposedKeys.h"
#include "Packs/PackManifest.h"
#include "Support/ScriptedCapture.h"

namespace tobrin {
namespace {

using Stage = RecordingGuide::Stage;
using Step = RecordingGuide::Step;

class RecordingGuideTest : public ::testing::Test {
 protected:
  RecordingGuideTest() {
    capture_->inputs = {{"webcam", "Webcam", false, false}, {"desk", "Desk", true, false}};
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

  /// Somebody types the composed keys from one second of them to another, 20 times as fast.
  void type(double fromSecond, double toSecond) {
    const auto at = [&](double second) { return begin_ + static_cast<int64_t>(second * 1e9); };
    auto key = composed_.recording.keys.begin();
    for (double second = fromSecond; second < toSecond; second += 0.1) {
      const auto first = composed_.recording.samples.begin() + std::lround(second * 48000);
      capture_->hear(at(second), {first, first + 4800});
      const auto time = [&] { return static_cast<double>(key->time) * 1e-9; };
      for (; key != composed_.recording.keys.end() && time() < second + 0.1; ++key) {
        if (time() >= second)
          guide_.addKey({codeFor(*key), key->action, static_cast<uint64_t>(begin_ + key->time)});
      }
      if (std::lround(second * 10) % 20 == 0) advance(100);
    }
    advance(100);
  }

  const ComposedKeys composed_ = composeKeys({.seconds = 62});
  const int64_t begin_ = static_cast<int64_t>(machNow());
  VirtualQueue main_{"main"};
  VirtualQueue worker_{"worker"};
  std::shared_ptr<testing::CaptureScript> capture_ = std::make_shared<testing::CaptureScript>();
  bool silent_ = false;
  std::filesystem::path played_;
  std::filesystem::path kept_;
  RecordingGuide guide_{
      {.main = main_,
       .worker = worker_,
       .makeCapture = [this] { return std::make_unique<testing::ScriptedCapture>(capture_); },
       .setSilent = [this](bool silent) { silent_ = silent; },
       .play = [this](const std::filesystem::path& pack) { played_ = pack; },
       .keep = [this](const std::filesystem::path& pack) { kept_ = pack; }}};
};

TEST_F(RecordingGuideTest, LeadsFromAMicrophoneToAPackAndLeavesNothingBehind) {
  guide_.begin();
  EXPECT_EQ(guide_.stage(), Stage::microphone);
  EXPECT_EQ(guide_.input(), "desk");
  EXPECT_EQ(capture_->input, "desk");
  EXPECT_TRUE(silent_);
  guide_.chooseInput("webcam");
  EXPECT_EQ(capture_->input, "webcam");
  guide_.startTyping();
  EXPECT_EQ(guide_.step(), Step::soft);
  type(0, 20);
  EXPECT_GT(guide_.have(Step::soft), 10U);
  guide_.pause();
  EXPECT_EQ(capture_->input, "");
  guide_.resume();
  EXPECT_EQ(capture_->input, "webcam");
  type(25, 60);
  EXPECT_GE(guide_.have(Step::soft), RecordingGuide::wanted(Step::soft));
  EXPECT_NE(guide_.step(), Step::soft) << "on to the next by itself";

  guide_.finish();
  EXPECT_EQ(guide_.stage(), Stage::building);
  EXPECT_EQ(capture_->input, "") << "the microphone is off";
  advance(100);
  ASSERT_EQ(guide_.stage(), Stage::listening) << guide_.problem();
  EXPECT_FALSE(silent_);
  EXPECT_EQ(PackInfo::read(played_, false).name, "My Keyboard");
  guide_.keep("Board");
  advance(100);
  EXPECT_EQ(PackInfo::read(kept_, false).name, "Board");
  guide_.keepFailed("no room");
  EXPECT_EQ(guide_.stage(), Stage::listening);
  EXPECT_EQ(guide_.problem(), "no room");
  const auto folder = kept_;
  guide_.leave();
  EXPECT_EQ(guide_.stage(), Stage::away);
  EXPECT_FALSE(std::filesystem::exists(folder));
  EXPECT_EQ(played_, "") << "the selected pack plays again";
  advance(1000);
  EXPECT_EQ(main_.nextDue(), std::nullopt) << "nobody looks any more";
}

TEST_F(RecordingGuideTest, SaysWhatIsInTheWayAndGoesOn) {
  capture_->problem = "there is no microphone";
  guide_.begin();
  EXPECT_EQ(guide_.problem(), "there is no microphone");
  capture_->problem.clear();
  guide_.chooseInput("webcam");
  EXPECT_EQ(guide_.problem(), "");
  guide_.startTyping();
  guide_.finish();
  advance(100);
  EXPECT_EQ(guide_.stage(), Stage::typing) << "there is nothing to make a pack of";
  EXPECT_NE(guide_.problem(), "");
  EXPECT_TRUE(guide_.isPaused());
  guide_.resume();
  EXPECT_EQ(capture_->input, "webcam");
  for (std::size_t step = 0; step < RecordingGuide::allSteps.size(); ++step)
    guide_.skip();
  EXPECT_EQ(guide_.stage(), Stage::building) << "nothing is left to skip";
  guide_.leave();
  EXPECT_FALSE(silent_);
  advance(1000);
  EXPECT_EQ(guide_.stage(), Stage::away) << "what was made meanwhile is dropped";
}

}  // namespace
}  // namespace tobrin
