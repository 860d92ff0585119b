#include "Diagnostics/SelfTest.h"

#include <gtest/gtest.h>

#include <sstream>

#include "Engine/Log.h"
#include "Engine/MachTime.h"
#include "Engine/VirtualQueue.h"
#include "Support/HandDrivenDevice.h"
#include "Support/ScriptedKeySource.h"
#include "Support/ScriptedMotionSource.h"
#include "Support/TestPack.h"

namespace tobrin {
namespace {

class ScriptTyper final : public KeyTyper {
 public:
  explicit ScriptTyper(testing::KeyScript& keys) : keys_(keys) {}
  bool open() override { return true; }
  bool send(uint16_t code, KeyAction action) override {
    if (action == KeyAction::down)
      keys_.press(code);
    else
      keys_.release(code);
    return true;
  }
  [[nodiscard]] std::string problem() const override { return ""; }

 private:
  testing::KeyScript& keys_;
};

/// The self-test of a machine on which everything works or nothing does: status and all its words.
std::pair<int, std::string> selfTest(bool works) {
  Log::setSink([](const std::string&) {});
  testing::KeyScript keys;
  testing::MotionScript motion;
  keys.allowed = works;
  motion.work(false);
  const auto device = std::make_shared<testing::HandDrivenDevice::Controls>();
  device->refusal = works ? "" : "no server";
  VirtualQueue queue("conductor");
  const PlatformWords words{.keyAccessCheck = "tap", .noSensorCheck = "no sensor here"};
  std::ostringstream out;
  SelfTest test(
      {.discoverPacks =
           [&] {
             return std::vector<PackInfo>(
                 works ? 2 : 1,
                 {.id = "", .name = "Bad", .kind = "", .summary = "", .directory = ""});
           },
       .loadPack =
           [&](const PackInfo&) {
             if (!works) throw std::runtime_error("it is damaged");
             return testing::TestPack::simple(512);
           },
       .conductorQueue = queue,
       .audioDevice = std::make_unique<testing::HandDrivenDevice>(device),
       .sensor = works ? nullptr
                       : std::make_unique<ForceSensor>(
                             std::make_unique<testing::ScriptedMotionSource>(motion)),
       .listen =
           [&](KeyMonitor::Handler handler) {
             return std::make_unique<KeyMonitor>(std::make_unique<testing::ScriptedKeySource>(keys),
                                                 std::move(handler), KeyMonitorOptions{});
           },
       .typer = std::make_unique<ScriptTyper>(keys),
       .sleep =
           [&](std::chrono::milliseconds time) {
             queue.runUntil(queue.now() + MachTime::ticks(static_cast<double>(time.count())));
             for (const float value : device->render(100).first)
               EXPECT_EQ(value, 0) << "muted";
           },
       .words = words},
      out);
  const int status = test.run();
  Log::setSink(nullptr);
  return {status, out.str()};
}

TEST(SelfTest, TellsWhatWorksAndWhatDoesNotWordForWord) {
  EXPECT_EQ(selfTest(true),
            (std::pair<int, std::string>{0,
                                         "PASS  found 2 sound packs\n"
                                         "PASS  loaded test (5 takes, 10 KiB)\n"
                                         "PASS  tap\n"
                                         "PASS  audio engine running: a device driven by hand\n"
                                         "PASS  synthetic key events (8 of 8 heard)\n"
                                         "PASS  render callback ran (1000 frames)\n"
                                         "PASS  no dropped commands\n"
                                         "SKIP  no sensor here\n"
                                         "All checks passed.\n"}));
  EXPECT_EQ(selfTest(false), (std::pair<int, std::string>{
                                 1,
                                 "PASS  found 1 sound packs\n"
                                 "FAIL  loaded Bad: it is damaged\n"
                                 "FAIL  tap: not allowed\n"
                                 "FAIL  audio engine running: no server\n"
                                 "FAIL  synthetic key events: nothing listens\n"
                                 "FAIL  render callback ran (0 frames)\n"
                                 "PASS  no dropped commands\n"
                                 "FAIL  motion sensor streaming (0 reports): the test says no\n"
                                 "6 check(s) failed.\n"}));
}

}  // namespace
}  // namespace tobrin
