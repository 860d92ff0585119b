#include "PipeWire/PipeWireMicSource.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <string>
#include <vector>

#include "PipeWire/PipeWireLoop.h"
#include "Support/Eventually.h"
#include "Tools/Desktop/ChildProcess.h"

namespace tobrin {
namespace {

using namespace std::chrono_literals;
using testing::ChildProcess;
using testing::eventually;
using testing::tellDesktop;
using Processes = std::vector<int32_t>;

class PipeWireMicSourceTest : public ::testing::Test {
 protected:
  void start() {
    source_.start([this] { changes_.fetch_add(1); });
  }

  [[nodiscard]] Processes recording() { return source_.read().recordingProcesses.value(); }

  /// Whether these come to be the ones that record.
  [[nodiscard]] bool record(const Processes& processes) {
    return eventually([&] { return recording() == processes; });
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
  ASSERT_TRUE(record({}));
  const int before = changes_;
  ChildProcess monitor({"parec", "-d", "test_sink.monitor", "--client-name=monitor"});
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

  ChildProcess caller({"parec", "-d", "filtered"});
  EXPECT_TRUE(record({caller.id()}));
  EXPECT_TRUE(source_.read().inputRunningSomewhere);  // test_mic, through the filter
}

TEST_F(PipeWireMicSourceTest, AttachesAgainAfterTheServerWasGone) {
  start();
  {
    ChildProcess program({"parec", "-d", "test_mic"});
    ASSERT_TRUE(record({program.id()}));
    tellDesktop("kill-sound");
    EXPECT_TRUE(record({}));
    EXPECT_EQ(source_.read().inputDeviceName, std::nullopt);
  }
  tellDesktop("start-sound");
  EXPECT_TRUE(eventually([&] { return source_.read().inputDeviceName == "test_mic"; }));
  ChildProcess program({"ffmpeg", "-f", "alsa", "-i", "pipewire", "-f", "null", "-"});
  EXPECT_TRUE(record({program.id()}));
  source_.stop();
  const int after = changes_;
  program.end();
  EXPECT_TRUE(record({}));
  EXPECT_EQ(changes_, after);
}

}  // namespace
}  // namespace tobrin
