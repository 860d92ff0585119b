#include "PipeWire/PipeWireOutput.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "PipeWire/PipeWireLoop.h"
#include "Support/ChildProcess.h"
#include "Support/PrivateDesktop.h"
#include "Support/TempFolder.h"

namespace tobrin {
namespace {

using namespace std::chrono_literals;
using testing::eventually;
using testing::tellDesktop;

/// Plays a ramp of known values whenever asked to, and counts what happens to it.
struct Player {
  static void render(void* context, float* left, float* right, uint32_t frames) noexcept {
    auto& player = *static_cast<Player*>(context);
    player.inRender.store(true);
    for (uint32_t i = 0; i < frames; ++i) {
      const float value = player.left > 0 ? 0.5F : 0.0F;
      if (player.left > 0) --player.left;
      left[i] = value;
      if (right != nullptr) right[i] = -0.5F * value;
    }
    player.blocks.fetch_add(1);
    player.largestBlock.store(std::max(player.largestBlock.load(), frames));
    player.inRender.store(false);
  }

  AudioCallbacks callbacks() {
    return {.render = render, .context = this, .changed = [this] { changes.fetch_add(1); }};
  }

  std::atomic<int> left = 0;  // frames of the pulse still to play
  std::atomic<int> blocks = 0;
  std::atomic<uint32_t> largestBlock = 0;
  std::atomic<int> changes = 0;
  std::atomic<bool> inRender = false;
};

/// What a sink plays, recorded from its monitor.
class Recording {
 public:
  explicit Recording(const std::string& sink)
      : path_(folder_.path() / "sound"),
        recorder_({"parec", "-d", sink + ".monitor", "--raw", "--format=float32le", "--rate=48000",
                   "--channels=2", "--latency-msec=10"},
                  path_) {
    if (!eventually([&] { return size() > 0; })) ADD_FAILURE() << "nothing is recorded";
  }

  /// Frames so far that are not silent, channel by channel.
  [[nodiscard]] std::vector<std::pair<float, float>> heard() const {
    std::ifstream file(path_, std::ios::binary);
    std::vector<std::pair<float, float>> frames;
    float pair[2];
    while (file.read(reinterpret_cast<char*>(pair), sizeof pair)) {
      if (pair[0] != 0 || pair[1] != 0) frames.emplace_back(pair[0], pair[1]);
    }
    return frames;
  }

 private:
  [[nodiscard]] std::uintmax_t size() const {
    std::error_code none;
    const auto bytes = std::filesystem::file_size(path_, none);
    return none ? 0 : bytes;
  }

  testing::TempFolder folder_;
  std::string path_;
  testing::ChildProcess recorder_;
};

/// How often the threads of this process have slept and been woken.
uint64_t wakeUps() {
  uint64_t sum = 0;
  for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
    std::ifstream status(thread.path() / "status");
    for (std::string word; status >> word;) {
      uint64_t count = 0;
      if (word == "voluntary_ctxt_switches:" && status >> count) sum += count;
    }
  }
  return sum;
}

class PipeWireOutputTest : public ::testing::Test {
 protected:
  PipeWireOutputTest() { output_.setCallbacks(player_.callbacks()); }

  Player player_;
  PipeWireOutput output_{std::make_shared<PipeWireLoop>()};
};

TEST_F(PipeWireOutputTest, FirstSoundAfterAPauseIsHeardWhole) {
  Recording recording("test_sink");
  constexpr std::size_t pulse = 1000;
  for (std::size_t round = 1; round <= 5; ++round) {
    player_.left = pulse;
    ASSERT_TRUE(output_.start()) << output_.problem();
    EXPECT_TRUE(output_.start());
    EXPECT_TRUE(eventually([&] { return recording.heard().size() >= round * pulse; }));
    output_.pause();
    EXPECT_FALSE(output_.isRunning());
    EXPECT_FALSE(player_.inRender);
  }
  const auto heard = recording.heard();
  ASSERT_EQ(heard.size(), 5 * pulse);
  for (const auto& [left, right] : heard) {
    ASSERT_EQ(left, 0.5F);
    ASSERT_EQ(right, -0.25F);
  }
  EXPECT_EQ(player_.largestBlock, 256U);
  EXPECT_EQ(player_.changes, 0);
}

TEST_F(PipeWireOutputTest, FollowsTheDefaultDevice) {
  const auto control = [](std::vector<std::string> words) {
    words.insert(words.begin(), "pactl");
    return testing::ChildProcess(words).wait();
  };
  ASSERT_EQ(control({"load-module", "module-null-sink", "sink_name=other_sink"}), 0);
  ASSERT_TRUE(output_.start());
  EXPECT_EQ(output_.description(), "PipeWire, test_sink");
  Recording recording("other_sink");
  ASSERT_EQ(control({"set-default-sink", "other_sink"}), 0);
  EXPECT_TRUE(eventually([&] { return player_.changes > 0 && output_.isRunning(); }));
  player_.left = 1000;
  EXPECT_TRUE(eventually([&] { return recording.heard().size() >= 1000; }));
  EXPECT_NE(output_.description(), "PipeWire, test_sink");
  ASSERT_EQ(control({"unload-module", "module-null-sink"}), 0);
  EXPECT_TRUE(eventually(
      [&] { return output_.isRunning() && output_.description() == "PipeWire, test_sink"; }));
}

TEST_F(PipeWireOutputTest, PausedIsIdle) {
  ASSERT_TRUE(output_.start());
  ASSERT_TRUE(eventually([&] { return player_.blocks > 10; }));
  output_.pause();
  std::this_thread::sleep_for(100ms);  // the server takes notice
  const int blocks = player_.blocks;
  const uint64_t before = wakeUps();
  std::this_thread::sleep_for(1s);
  EXPECT_LE(wakeUps() - before, 1U);  // this thread's own
  EXPECT_EQ(player_.blocks, blocks);
}

TEST_F(PipeWireOutputTest, ResumesByItselfAfterTheServerWasGone) {
  ASSERT_TRUE(output_.start());
  ASSERT_TRUE(eventually([&] { return output_.isRunning(); }));
  tellDesktop("kill-sound");
  EXPECT_TRUE(eventually([&] { return !output_.isRunning() && player_.changes == 1; }));
  EXPECT_FALSE(output_.start());
  EXPECT_FALSE(output_.problem().empty());

  tellDesktop("start-sound");
  EXPECT_TRUE(eventually([&] { return output_.isRunning() && player_.changes >= 2; }));
  EXPECT_EQ(output_.problem(), "");
  const int blocks = player_.blocks;
  EXPECT_TRUE(eventually([&] { return player_.blocks > blocks + 5; }));
}

TEST_F(PipeWireOutputTest, PausedStaysPausedWhileTheServerComesAndGoes) {
  ASSERT_TRUE(output_.start());
  output_.pause();
  tellDesktop("kill-sound");
  const uint64_t before = wakeUps();
  std::this_thread::sleep_for(500ms);
  EXPECT_LE(wakeUps() - before, 3U);
  tellDesktop("start-sound");
  EXPECT_FALSE(output_.isRunning());
  const int blocks = player_.blocks;
  ASSERT_TRUE(output_.start()) << output_.problem();
  EXPECT_TRUE(eventually([&] { return player_.blocks > blocks; }));
}

TEST_F(PipeWireOutputTest, StartsAndPausesInQuickTurns) {
  for (int i = 0; i < 50; ++i) {
    ASSERT_TRUE(output_.start()) << i << ": " << output_.problem();
    output_.pause();
    const int blocks = player_.blocks;
    std::this_thread::sleep_for(2ms);
    ASSERT_EQ(player_.blocks, blocks) << i;
  }
}

}  // namespace
}  // namespace tobrin
