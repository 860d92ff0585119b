#include "Diagnostics/SelfTest.h"

#include <gtest/gtest.h>

#include <sstream>

#include "Base/Key.h"
#include "Base/Log.h"
#include "Base/MachTime.h"
#include "Base/VirtualQueue.h"
#include "Support/HandDrivenDevice.h"
#include "Support/KeptText.h"
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
    EXPECT_NE(code, codeOf(Key::f13)) << "desktops open their settings at it";
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

/// The self-test of a machine on which everything works or nothing does, and on which this program
/// may listen or not: all its words, and its status.
std::string selfTest(bool works, bool mayListen) {
  setLogSink([](const std::string&) {});
  testing::KeyScript keys;
  testing::MotionScript motion;
  keys.allowed = mayListen;
  keys.work(works);
  motion.work(false);
  const auto device = std::make_shared<testing::HandDrivenDevice::Controls>();
  device->refusal = works ? "" : "no server";
  VirtualQueue queue("conductor");
  const PlatformWords words{.keyAccessCheck = "tap", .noSensorCheck = "no sensor here"};
  std::ostringstream out;
  SelfTest test({.discoverPacks =
                     [&] {
                       return std::vector<PackInfo>(works ? 2 : 1, {.id = "",
                                                                    .name = "B\x1b\xc2\x9b"
                                                                            "ad",
                                                                    .kind = "",
                                                                    .summary = "",
                                                                    .directory = ""});
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
                       return std::make_unique<KeyMonitor>(
                           std::make_unique<testing::ScriptedKeySource>(keys), std::move(handler),
                           KeyMonitorOptions{});
                     },
                 .typer = std::make_unique<ScriptTyper>(keys),
                 .sleep =
                     [&](std::chrono::milliseconds time) {
                       queue.runUntil(queue.now() + machTicks(static_cast<double>(time.count())));
                       for (const float value : device->render(100).first)
                         EXPECT_EQ(value, 0) << "muted";
                     },
                 .words = words},
                out);
  const int status = test.run();
  setLogSink(nullptr);
  return out.str() + "status " + std::to_string(status) + "\n";
}

TEST(SelfTest, SaysWhatWorksAndWhatDoesNotWordForWord) {
  testing::expectKeptText(selfTest(true, true) + selfTest(false, false),
                          "Tobrin/Diagnostics/self-test.txt");
  const std::string keyless = selfTest(false, true);
  EXPECT_NE(keyless.find("FAIL  tap: no keyboard opens\n      Try: access is there"),
            std::string::npos)
      << keyless;
}

}  // namespace
}  // namespace tobrin
