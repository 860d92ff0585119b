#include "Alsa/AlsaOutput.h"

#include <alsa/asoundlib.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <future>
#include <memory>
#include <vector>

#include "Alsa/AlsaConfiguration.h"
#include "Alsa/AlsaPcm.h"
#include "Alsa/Interleaving.h"
#include "Support/AudioPlayer.h"
#include "Support/Eventually.h"
#include "Support/TempFolder.h"
#include "Support/WakeUps.h"

namespace tobrin {
namespace {

using namespace std::chrono_literals;
using testing::eventually;

/// An ALSA configuration of the test's own in place of the machine's.
class AlsaOutputTest : public ::testing::Test {
 protected:
  ~AlsaOutputTest() override {
    unsetenv("ALSA_CONFIG_PATH");
    snd_config_update_free_global();
  }

  void configure(const std::string& text) {
    setenv("ALSA_CONFIG_PATH", folder_.write("asound.conf", text).c_str(), 1);
    snd_config_update_free_global();
  }

  [[nodiscard]] std::string recorded() const { return folder_.path() / "played.raw"; }

  template <typename Sample>
  [[nodiscard]] std::vector<Sample> heard() const {
    std::ifstream file(recorded(), std::ios::binary);
    std::vector<Sample> samples;
    for (Sample next{}; file.read(reinterpret_cast<char*>(&next), sizeof next);) {
      if (next != 0) samples.push_back(next);
    }
    return samples;
  }

  static constexpr int pulse = 500;

  void play(const std::string& device) {
    AlsaOutput output(device);
    output.setCallbacks(player_.callbacks());
    player_.pulseFrames = pulse;
    ASSERT_TRUE(output.start()) << output.problem();
    ASSERT_TRUE(eventually([&] { return player_.pulseFrames == 0; })) << device;
    output.pause();
  }

  testing::TempFolder folder_;
  testing::AudioPlayer player_;
};

TEST_F(AlsaOutputTest, PlaysInEachFormatThatADeviceTakes) {
  // Floats are offered first; these devices take something else, or one channel only.
  configure("pcm.file { type file slave.pcm { type null } format raw file \"" + recorded() +
            "\" }\npcm.integers { type linear slave { pcm file format S16_LE } }\n"
            "pcm.mono { type multi slaves.a { pcm file channels 1 } "
            "bindings.0 { slave a channel 0 } }\n");
  play("file");
  const auto floats = heard<float>();
  ASSERT_EQ(floats.size(), 2U * pulse);
  EXPECT_EQ(floats[pulse], 0.5F);
  EXPECT_EQ(floats[pulse + 1], -0.25F);

  play("integers");
  EXPECT_EQ(heard<int16_t>().size(), 2U * pulse);

  play("mono");
  EXPECT_EQ(heard<float>(), std::vector<float>(pulse, 0.5F));
}

TEST(Interleaving, RoundsAndLimitsIntegers) {
  const std::vector<float> left = {1.0F, -1.5F, 1.4F / 32768}, right = {0.25F, -0.5F, 1.6F / 32768};
  std::array<int16_t, 6> narrow{};
  interleave(left, right, DeviceFormat::int16, reinterpret_cast<std::byte*>(narrow.data()));
  EXPECT_EQ(narrow, (std::array<int16_t, 6>{32767, 8192, -32768, -16384, 1, 2}));
  std::array<int32_t, 3> mono{};
  interleave(left, {}, DeviceFormat::int32, reinterpret_cast<std::byte*>(mono.data()));
  EXPECT_EQ(mono[0], INT32_MAX);
  EXPECT_EQ(mono[1], INT32_MIN);
}

TEST_F(AlsaOutputTest, TriesAgainUntilTheDeviceIsThere) {
  // As PulseAudio's: it is the default device where its server runs when ALSA reads this.
  const std::string later = folder_.path() / "later.conf";
  configure("@hooks [ { func load files [ \"" + later + "\" ] errors false } ]");
  AlsaOutput output("late");
  output.setCallbacks(player_.callbacks());
  EXPECT_FALSE(output.start());
  const auto tries = testing::wakeUps();
  std::this_thread::sleep_for(300ms);
  EXPECT_LT(testing::wakeUps() - tries, 10U);
  EXPECT_NE(output.problem().find("'late' cannot be opened"), std::string::npos)
      << output.problem();
  folder_.write("later.conf", "pcm.late { type null }");
  EXPECT_TRUE(eventually([&] { return output.isRunning() && player_.changes == 1; }));
  EXPECT_EQ(output.problem(), "");
}

TEST_F(AlsaOutputTest, TheDefaultStandsInForAChosenDeviceThatIsAway) {
  const std::string later = folder_.path() / "later.conf";
  configure("pcm.usual { type null }\n@hooks [ { func load files [ \"" + later +
            "\" ] errors false } ]");
  AlsaOutput output("usual");
  output.setCallbacks(player_.callbacks());
  const auto plays = [&](const std::string& device) {
    const int blocks = player_.blocks;
    return eventually([&] { return player_.used() == device && player_.blocks > blocks; });
  };
  output.choose("chosen");
  ASSERT_TRUE(output.start()) << output.problem();
  EXPECT_TRUE(plays("usual"));
  output.pause();
  folder_.write("later.conf", "pcm.chosen { type null }");
  ASSERT_TRUE(output.start());
  EXPECT_TRUE(plays("chosen"));
  EXPECT_EQ(output.description(), "ALSA, chosen");
  output.choose("");
  EXPECT_TRUE(plays("usual")) << "while it plays";
  EXPECT_FALSE(player_.overlapped);
  output.pause();
  folder_.write("later.conf", "pcm.!usual { type pulse }\npcm.chosen { type null }");
  output.choose("chosen");
  EXPECT_FALSE(output.start()) << "a server has come, and the cards belong to it";
}

TEST_F(AlsaOutputTest, ADeviceThatDoesNotAnswerStopsNobody) {
  ASSERT_EQ(mkfifo(recorded().c_str(), 0600), 0);  // opening it waits for a reader
  configure("pcm.hung { type file slave.pcm { type null } format raw file \"" + recorded() +
            "\" }\npcm.silent { type null }");
  auto output = std::make_unique<AlsaOutput>("hung");
  output->setCallbacks(player_.callbacks());
  output->choose("missing");
  EXPECT_FALSE(output->start());
  EXPECT_EQ(output->problem(), "the ALSA device 'hung' does not answer");
  output->pause();

  testing::AudioPlayer others;
  auto other = std::make_unique<AlsaOutput>("silent");
  other->setCallbacks(others.callbacks());
  ASSERT_TRUE(other->start()) << other->problem();
  other->choose("hung");
  EXPECT_TRUE(eventually([&] {
    const int blocks = others.blocks;
    std::this_thread::sleep_for(100ms);
    return others.blocks == blocks;
  }));
  const auto paused = std::async(std::launch::async, [&] { other->pause(); });
  EXPECT_EQ(paused.wait_for(5s), std::future_status::ready) << "while another one is opened";

  const int reader = open(recorded().c_str(), O_RDONLY | O_NONBLOCK);
  EXPECT_TRUE(output->start()) << output->problem();
  EXPECT_TRUE(eventually([&] { return player_.blocks > 0; }));
  output->pause();
  output.reset();  // writes to the end
  other.reset();
  close(reader);
}

TEST_F(AlsaOutputTest, JackDoesNotComplainAtEveryTry) {
  configure("pcm.patched { type plug slave.pcm { type jack } }");
  EXPECT_THROW(AlsaPcm("patched"), std::runtime_error);
  void* const library = dlopen("libjack.so.0", RTLD_NOW);
  if (library == nullptr) GTEST_SKIP() << "no JACK library";
  using Open = void* (*)(const char*, int, int*, ...);
  constexpr int noStart = 1;  // of a server
  int status = 0;
  ::testing::internal::CaptureStderr();
  reinterpret_cast<Open>(dlsym(library, "jack_client_open"))("tobrin", noStart, &status);
  EXPECT_NE(status, 0);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

TEST_F(AlsaOutputTest, KnowsWhichDevicesLeadToPipeWire) {
  configure(
      "pcm.inside { type plug slave.pcm { type pipewire } }\n"
      "pcm.behind { type plug slave.pcm inside }\n"
      "pcm.circle { type plug slave.pcm circle }\n"
      "pcm.card { type plug slave.pcm { type null } }\n"
      "pcm.pulled { @func refer name { @func card_driver card 99 } }\n");
  ::testing::internal::CaptureStderr();
  EXPECT_TRUE(alsaDeviceLeadsTo("pipewire", "behind"));
  for (const char* device : {"circle", "card", "missing", "pulled"})
    EXPECT_FALSE(alsaDeviceLeadsTo("pipewire", device)) << device;
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "") << "the library's own words";
}

}  // namespace
}  // namespace tobrin
