#include <alsa/asoundlib.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <string>
#include <utility>
#include <vector>

#include "Desktop/SessionSound.h"
#include "PipeWire/PipeWireCapture.h"
#include "PipeWire/PipeWireLoop.h"
#include "PipeWire/PipeWireMicSource.h"
#include "PipeWire/PipeWireOutput.h"
#include "Pulse/PulseMicSource.h"
#include "Support/AudioPlayer.h"
#include "Support/Eventually.h"
#include "Support/TempFolder.h"
#include "Support/WakeUps.h"
#include "Tools/Desktop/ChildProcess.h"
#include "Tools/Desktop/SinkRecording.h"

namespace tobrin {
namespace {

using namespace std::chrono_literals;
using testing::ChildProcess;
using testing::eventually;
using testing::tellDesktop;
using testing::wakeUps;

class PipeWireOutputTest : public ::testing::Test {
 protected:
  PipeWireOutputTest() { output_.setCallbacks(player_.callbacks()); }

  testing::AudioPlayer player_;
  PipeWireOutput output_{std::make_shared<PipeWireLoop>()};
};

TEST_F(PipeWireOutputTest, FirstSoundAfterAPauseIsHeardWhole) {
  testing::SinkRecording recording("test_sink");
  constexpr std::ptrdiff_t pulse = 1000;
  std::ptrdiff_t before = 0;
  int lateStarts = 0;
  const auto pulseIsHeard = [&] {
    const auto heard = recording.heard();
    return std::ssize(heard) == before + pulse &&
           std::count(heard.begin() + before, heard.end(), std::pair(0.5F, -0.25F)) == pulse;
  };
  // Where a cycle was missed, because the machine gives no program real-time scheduling and has too
  // much to do, a block of the player or of the recording is lost in it: such a round tells
  // nothing.
  for (int whole = 0, rounds = 0; whole < 5; ++rounds) {
    ASSERT_LT(rounds, 50) << "the machine never has the time";
    const auto missed = recording.missedCycles();
    player_.pulseFrames = pulse;
    if (!output_.start()) ++lateStarts;  // a busy server links late; it plays from then on
    ASSERT_TRUE(eventually([&] { return output_.isRunning(); })) << output_.problem();
    EXPECT_TRUE(output_.start());
    EXPECT_TRUE(eventually([&] { return player_.pulseFrames == 0; }));
    const bool isWhole = eventually(pulseIsHeard, 500ms);
    output_.pause();
    const int blocks = player_.blocks;
    std::this_thread::sleep_for(2ms);
    ASSERT_EQ(player_.blocks, blocks) << "silent at once";
    before = std::ssize(recording.heard());
    if (isWhole) ++whole;
    ASSERT_TRUE(isWhole || recording.missedCycles() > missed) << before << " frames heard";
  }
  EXPECT_EQ(player_.largestBlock, 256U);
  EXPECT_LE(player_.changes, lateStarts);
}

TEST_F(PipeWireOutputTest, PausedIsIdleAlsoWhileTheServerComesAndGoes) {
  ASSERT_TRUE(output_.start());
  ASSERT_TRUE(eventually([&] { return player_.blocks > 10; }));
  output_.pause();
  // The server lets the device go to sleep.
  EXPECT_TRUE(eventually([] {
    return testing::ChildProcess(
               {"sh", "-c", "pactl list short sinks | grep test_sink | grep -qE 'IDLE|SUSPENDED'"})
               .wait() == 0;
  }));
  const int blocks = player_.blocks;
  for (const char* disturbance : {"pids", "kill-sound"}) {
    tellDesktop(disturbance);
    std::this_thread::sleep_for(200ms);  // a loss is noticed, also on a busy machine
    const uint64_t before = wakeUps();
    std::this_thread::sleep_for(800ms);
    EXPECT_LE(wakeUps() - before, testing::restingWakeUps) << disturbance;  // 150 while it plays
  }
  tellDesktop("start-sound");
  EXPECT_FALSE(output_.isRunning());
  EXPECT_EQ(player_.blocks, blocks);
  ASSERT_TRUE(output_.start()) << output_.problem();
  EXPECT_TRUE(eventually([&] { return player_.blocks > blocks; }));
}

TEST_F(PipeWireOutputTest, PlaysOnTheChosenDeviceWheneverItIsThere) {
  const auto shell = [](const std::string& line) {
    return ChildProcess({"sh", "-c", line}).wait();
  };
  const auto plug = [&](const std::string& name) {
    ASSERT_EQ(shell("pactl load-module module-null-sink sink_name=" + name +
                    " sink_properties=device.description=The_" + name),
              0);
  };
  const auto unplug = [&](const std::string& name) {
    ASSERT_EQ(shell("pactl unload-module $(pactl list short modules | grep sink_name=" + name +
                    " | cut -f1)"),
              0);
  };
  const auto setDefault = [&](const std::string& name) {
    ASSERT_EQ(shell("pactl set-default-sink " + name), 0);
  };
  const auto playsOn = [&](const std::string& name) {
    return eventually([&] { return player_.used() == name && output_.isRunning(); }, 1s);
  };
  output_.findOutputs();
  EXPECT_TRUE(eventually([&] { return player_.used() == "test_sink"; })) << "without a start";
  plug("wanted");
  output_.choose("wanted");
  ASSERT_TRUE(output_.start());
  EXPECT_TRUE(playsOn("The_wanted"));
  {
    testing::SinkRecording there("wanted"), elsewhere("test_sink");
    player_.pulseFrames = 1000;
    EXPECT_TRUE(eventually([&] { return there.heard().size() == 1000; }));
    EXPECT_TRUE(elsewhere.heard().empty());
  }
  // Where the default and the chosen one were the same for a while, they part again.
  setDefault("wanted");
  unplug("wanted");
  EXPECT_TRUE(playsOn("test_sink")) << "the default stands in";
  const int blocks = player_.blocks;
  EXPECT_TRUE(eventually([&] { return player_.blocks > blocks; }, 1s));
  plug("wanted");
  EXPECT_TRUE(playsOn("The_wanted"));
  setDefault("test_sink");
  std::this_thread::sleep_for(300ms);
  EXPECT_TRUE(playsOn("The_wanted"));

  // What the desktop's mixer says later holds, also when other devices come.
  plug("moved");
  // The server's answer to a mixer is sometimes that it has moved a stream which it then has not.
  EXPECT_TRUE(eventually([&] {
    (void)shell("pactl move-sink-input $(pactl list short sink-inputs | cut -f1) moved");
    return playsOn("The_moved");
  }));
  plug("other");
  std::this_thread::sleep_for(300ms);
  EXPECT_TRUE(playsOn("The_moved"));
  output_.choose("");
  EXPECT_TRUE(playsOn("test_sink"));
  setDefault("other");
  EXPECT_TRUE(playsOn("The_other")) << "the default is followed";
  setDefault("test_sink");
  output_.pause();
  output_.choose("moved");
  EXPECT_TRUE(eventually([&] { return player_.used() == "The_moved"; })) << "while it rests";
  for (const char* name : {"wanted", "moved", "other"})
    unplug(name);
}

class MakeAudioDeviceTest : public ::testing::Test {
 protected:
  MakeAudioDeviceTest() {
    tellDesktop("kill-sound");
    device_->setCallbacks(player_.callbacks());
  }
  ~MakeAudioDeviceTest() override {
    unsetenv("ALSA_CONFIG_PATH");
    snd_config_update_free_global();
    tellDesktop("restart-sound");
  }

  void configureAlsa(const std::string& text) {
    setenv("ALSA_CONFIG_PATH", folder_.write("asound.conf", text).c_str(), 1);
    snd_config_update_free_global();
  }

  [[nodiscard]] bool isOnPipeWire() const {
    return device_->isRunning() && device_->description() == "PipeWire, test_sink";
  }

  testing::TempFolder folder_;
  testing::AudioPlayer player_;
  std::unique_ptr<AudioDevice> device_ = makeAudioDevice(makePipeWireLoop());
};

TEST_F(MakeAudioDeviceTest, UsesAlsaUntilAServerAnswersAndNeverAfter) {
  configureAlsa("pcm.default { type null }");
  ASSERT_TRUE(device_->start()) << device_->problem();
  EXPECT_EQ(device_->description(), "ALSA, default");
  tellDesktop("start-sound");
  EXPECT_TRUE(eventually([&] { return isOnPipeWire() && player_.changes > 0; }));
  const int blocks = player_.blocks;
  EXPECT_TRUE(eventually([&] { return player_.blocks > blocks + 20; }));
  EXPECT_FALSE(player_.overlapped);

  tellDesktop("kill-sound");
  EXPECT_TRUE(eventually([&] { return !device_->isRunning(); }));
  EXPECT_FALSE(device_->start());
  device_->pause();
}

TEST_F(MakeAudioDeviceTest, UsesAlsaWhileTheServerHasNoSink) {
  const auto shell = [](const char* line) { return ChildProcess({"sh", "-c", line}).wait(); };
  const auto played = folder_.path() / "played.raw";
  configureAlsa("pcm.default { type file slave.pcm { type null } format raw file \"" +
                played.string() + "\" }");
  tellDesktop("start-sound");
  ASSERT_EQ(shell("pactl unload-module module-always-sink && pw-cli destroy test_sink"), 0);
  const auto isOnAlsa = [&] { return device_->description() == "ALSA, default"; };
  for (int round = 0; round < 2; ++round) {
    player_.pulseFrames = 1000;
    // As its owner does: whenever the device has news.
    for (int seen = -1; seen != player_.changes || !isOnAlsa();) {
      seen = player_.changes;
      device_->start();
      ASSERT_TRUE(eventually([&] { return player_.changes > seen || isOnAlsa(); })) << round;
    }
    EXPECT_TRUE(eventually([&] { return player_.pulseFrames == 0; }));
    device_->pause();
    EXPECT_GT(std::filesystem::file_size(played), 8000U);
    const auto began = std::chrono::steady_clock::now();
    ASSERT_TRUE(device_->start());
    EXPECT_TRUE(isOnAlsa());
    EXPECT_LT(std::chrono::steady_clock::now() - began, 400ms) << "no key waits for a sink";
    if (round == 0) {
      ASSERT_EQ(shell("pactl load-module module-null-sink sink_name=test_sink "
                      "sink_properties=device.description=test_sink"),
                0);
      EXPECT_TRUE(eventually([&] { return isOnPipeWire(); }));
      ASSERT_EQ(shell("pactl unload-module module-null-sink"), 0);
    }
  }
  tellDesktop("kill-sound");
  device_->pause();
  EXPECT_TRUE(device_->start()) << "with the server gone";
  EXPECT_FALSE(player_.overlapped);
}

TEST_F(MakeAudioDeviceTest, DoesNotReachForTheMissingServerThroughAlsa) {
  configureAlsa("pcm.default { type pipewire }");
  EXPECT_FALSE(device_->start());
  EXPECT_NE(device_->problem().find("no PipeWire server answers"), std::string::npos)
      << device_->problem();
  tellDesktop("start-sound");
  EXPECT_TRUE(eventually([&] { return isOnPipeWire(); }));
}

using Processes = std::vector<int32_t>;

class PipeWireMicSourceTest : public ::testing::Test {
 protected:
  void start() {
    source_.start([this] { changes_.fetch_add(1); });
  }

  /// Whether these come to be the ones that record.
  [[nodiscard]] bool record(const std::optional<Processes>& processes) {
    return eventually([&] { return source_.read().recordingProcesses == processes; });
  }

  [[nodiscard]] static bool isLinked(const std::string& node) {
    return eventually([&] {
      return ChildProcess({"sh", "-c", "pw-link -l | grep -q '^" + node + ":'"}).wait() == 0;
    });
  }

  std::atomic<int> changes_ = 0;
  PipeWireMicSource source_{std::make_shared<PipeWireLoop>()};
};

TEST_F(PipeWireMicSourceTest, IgnoresWhatIsNoMicrophoneUse) {
  start();
  ASSERT_TRUE(record(Processes()));
  const int before = changes_;
  {
    const ChildProcess monitor({"parec", "-d", "test_sink.monitor", "--client-name=monitor"});
    EXPECT_TRUE(eventually([&] { return source_.read().outputRecorded; }));
    EXPECT_FALSE(source_.read().micInUse());
  }
  EXPECT_TRUE(eventually([&] { return !source_.read().outputRecorded; }));
  EXPECT_EQ(changes_.exchange(before), before + 2);
  // At the device's own rate: level meters at another one crash in PipeWire 0.3.65.
  ChildProcess meter({"pw-record", "--target=test_mic", "--rate=48000", "--channels=1",
                      "--properties={ stream.monitor=true node.name=meter }", "/dev/null"});
  ChildProcess own({"parec", "-d", "test_mic", "--property=node.name=own",
                    "--property=application.process.id=" + std::to_string(getpid())});
  ChildProcess filter({"pw-loopback", "-C", "test_mic", "--capture-props=node.name=filter_in",
                       "--playback-props=media.class=Audio/Source node.name=filtered"});
  for (const char* node : {"meter", "own", "filter_in"}) {
    EXPECT_TRUE(isLinked(node)) << node;
  }
  std::this_thread::sleep_for(100ms);
  EXPECT_FALSE(source_.read().micInUse());
  EXPECT_EQ(changes_, before);

  {
    const ChildProcess sandboxed({"parec", "-d", "test_mic",
                                  "--property=pipewire.access.portal.app_id=org.example.Calls",
                                  "--property=application.process.id=" + std::to_string(getpid())});
    EXPECT_TRUE(record(Processes{0})) << "its number is its sandbox's";
  }
  ChildProcess caller({"parec", "-d", "filtered"});
  EXPECT_TRUE(record(Processes{caller.id()}));
  EXPECT_TRUE(source_.read().inputRunningSomewhere);  // test_mic, through the filter
}

TEST_F(PipeWireMicSourceTest, AttachesAgainAfterTheServerWasGone) {
  start();
  {
    ChildProcess program({"parec", "-d", "test_mic"});
    ASSERT_TRUE(record(Processes{program.id()}));
    tellDesktop("kill-sound");
    EXPECT_TRUE(record(std::nullopt)) << "nobody can tell";
    EXPECT_EQ(source_.read().inputDeviceName, std::nullopt);
  }
  tellDesktop("start-sound");
  EXPECT_TRUE(eventually([&] { return source_.read().inputDeviceName == "test_mic"; }));
  ChildProcess program({"ffmpeg", "-f", "alsa", "-i", "pipewire", "-f", "null", "-"});
  EXPECT_TRUE(record(Processes{program.id()}));
  source_.stop();
  const int after = changes_;
  program.end();
  EXPECT_TRUE(record(Processes()));
  EXPECT_EQ(changes_, after);
}

class PipeWireCaptureTest : public ::testing::Test {
 protected:
  /// Whether sound above silence comes in now; looks at the times of all blocks.
  bool isHeard() {
    return eventually([&] {
      bool isLoud = false;
      capture_.take([&](const SoundCapture::Block& block) {
        const auto frames = static_cast<int64_t>(block.interleaved.size() / 2);
        if (due_ && std::abs(block.time - *due_) < 2'000'000) ++evenBlocks_;
        ++blocks_;
        due_ = block.time + frames * 1'000'000'000 / 48000;
        for (const float sample : block.interleaved)
          isLoud = isLoud || std::abs(sample) > 0.01F;
      });
      return isLoud;
    });
  }

  static int shell(const std::string& line) { return ChildProcess({"sh", "-c", line}).wait(); }

  PipeWireCapture capture_{std::make_shared<PipeWireLoop>()};
  std::optional<int64_t> due_;
  int blocks_ = 0;
  int evenBlocks_ = 0;
};

TEST_F(PipeWireCaptureTest, HearsTheMicrophoneAndWaitsForOneThatGoesAway) {
  const testing::TempFolder folder;
  const std::string file = (folder.path() / "tone.wav").string();
  ASSERT_EQ(
      shell("ffmpeg -loglevel quiet -f lavfi -i sine=440:duration=60:sample_rate=48000 " + file),
      0);
  // A player's own target can only be a sink.
  const auto play = [&](const std::string& input) {
    ASSERT_TRUE(eventually(
        [&] { return shell("pw-link pw-cat:output_MONO " + input + ":input_MONO 2>&1") == 0; }));
  };
  EXPECT_FALSE(capture_.start("no such"));
  EXPECT_EQ(capture_.problem(), "there is no microphone \"no such\"");
  const auto inputs = capture_.inputs();
  EXPECT_TRUE(std::any_of(inputs.begin(), inputs.end(), [](const SoundCapture::Input& input) {
    return input.name == "test_mic" && input.isDefault;
  }));
  EXPECT_NE(shell("pw-link -l | grep -q tobrin-record"), 0) << "nothing is recorded yet";
  {
    ASSERT_TRUE(capture_.start("")) << capture_.problem();
    const ChildProcess player({"pw-cat", "-p", "--target=0", file});
    play("test_mic");
    EXPECT_TRUE(isHeard());
    std::this_thread::sleep_for(1s);
    EXPECT_TRUE(isHeard());
    EXPECT_GE(evenBlocks_ + 3, blocks_ * 9 / 10) << blocks_;
    capture_.stop();
    EXPECT_NE(shell("pw-link -l | grep -q tobrin-record"), 0);
  }
  constexpr auto makeMicrophone =
      "pactl load-module module-null-sink media.class=Audio/Source/Virtual "
      "sink_name=second_mic channel_map=mono";
  ASSERT_EQ(shell(makeMicrophone), 0);
  ASSERT_TRUE(capture_.start("second_mic")) << capture_.problem();
  ASSERT_EQ(shell("pactl unload-module module-null-sink"), 0);
  EXPECT_TRUE(eventually([&] { return capture_.problem().ends_with(" is gone"); }));
  ASSERT_EQ(shell(makeMicrophone), 0);
  EXPECT_TRUE(eventually([&] { return capture_.problem().empty(); })) << capture_.problem();
  const ChildProcess player({"pw-cat", "-p", "--target=0", file});
  play("second_mic");
  EXPECT_TRUE(isHeard());
  EXPECT_EQ(shell("pactl unload-module module-null-sink"), 0);
}

// The sound server's PulseAudio face answers what is asked here as PulseAudio itself does.
TEST(PulseMicSource, FollowsAServerThatComesAndGoes) {
  tellDesktop("kill-sound");
  PulseMicSource source;
  std::atomic<int> changes = 0;
  source.start([&] { changes.fetch_add(1); });
  const auto record = [&](const std::optional<Processes>& processes) {
    return eventually([&] { return source.read().recordingProcesses == processes; });
  };
  EXPECT_TRUE(record(std::nullopt));
  tellDesktop("start-sound");
  ASSERT_TRUE(record(Processes()));
  EXPECT_EQ(source.read().inputDeviceName, "test_mic");
  ChildProcess monitor({"parec", "-d", "test_sink.monitor"});
  ChildProcess caller({"parec", "-d", "test_mic"});
  EXPECT_TRUE(record(Processes{caller.id()}));
  EXPECT_TRUE(source.read().inputRunningSomewhere);
  EXPECT_GE(changes, 2);
  caller.end();
  EXPECT_TRUE(record(Processes()));
  tellDesktop("kill-sound");
  EXPECT_TRUE(record(std::nullopt)) << "nobody can tell";
  source.stop();
  tellDesktop("start-sound");
  EXPECT_TRUE(record(Processes())) << "asked once";
}

}  // namespace
}  // namespace tobrin
