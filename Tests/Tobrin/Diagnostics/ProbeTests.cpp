#include "Diagnostics/Probe.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <sstream>

#include "Force/TraceSource.h"
#include "Support/ScriptedKeySource.h"
#include "Support/TempFolder.h"

namespace tobrin::probe {
namespace {

using testing::KeyScript;
using testing::ScriptedKeySource;
using testing::TempFolder;

constexpr uint64_t millisecond = 1'000'000;

TEST(ProbeReport, AHitIsTheEarliestOfTheStrongestSamples) {
  const uint64_t key = 1000 * millisecond;
  EXPECT_FALSE(hitOf(0, key, {}));
  const auto hit = hitOf(49, key,
                         {{key - 40 * millisecond, 0.001f},
                          {key - 12 * millisecond, 0.5f},
                          {key + 3 * millisecond, 0.5f}});
  ASSERT_TRUE(hit);
  EXPECT_EQ(hit->group, "space");
  EXPECT_EQ(hit->offsetMs, -12);
  EXPECT_EQ(hit->peak, 0.5f);
  EXPECT_EQ(hit->trace.back(), (Hit::Point{3, 0.5f}));
}

TEST(ProbeReport, TextsAndFilesAreExact) {
  const std::vector<Hit> hits = {{"alpha", -12, 0.02f, {{-12, 0.02f}, {0.5, 0.001f}}},
                                 {"space", 14, 0.04f, {{14, 0.04f}}},
                                 {"enter", 14.001, 1.25f, {}}};
  EXPECT_EQ(percentInWindow(hits), 66) << "both edges count, and the rest is cut off";
  EXPECT_EQ(report(hits, {999.6, 0.002f}),
            "Keystrokes: 3   sensor: 1000 Hz   noise floor: 0.0020 g\n"
            "Impact time vs key event (ms):  p10 -12.0   median +14.0   p90 +14.0\n"
            "Impact peak (g):  p10 0.0200   median 0.0400   p90 0.0400   max 1.2500\n"
            "Signal to noise (median peak / noise): 20.0x\n"
            "Impacts inside the engine's [-12, +14] ms window: 66%\n");
  EXPECT_EQ(hitsCsv(hits),
            "index,group,offset_ms,peak_g\n0,alpha,-12.000,0.02000\n1,space,14.000,0.04000\n"
            "2,enter,14.001,1.25000\n");
  EXPECT_EQ(tracesCsv(hits),
            "index,dt_ms,value_g\n0,-12.000,0.02000\n0,0.500,0.00100\n1,14.000,0.04000\n");
}

/// A machine in virtual time: a 1000 Hz sensor struck 3 ms after each key, and a typist.
class ProbeRun {
 public:
  explicit ProbeRun(std::vector<uint64_t> keysAtMs) : keysAtMs_(std::move(keysAtMs)) {
    for (uint64_t i = 0; i < 30'000; ++i) {
      const bool struck = std::count(keysAtMs_.begin(), keysAtMs_.end(), i - 3) > 0;
      trace_.samples.push_back({i * millisecond, {0, 0, struck ? 1.0 : 0.0}});
    }
  }

  int run(double seconds, bool withSensor = true) {
    std::unique_ptr<ForceSensor> sensor;
    if (withSensor)
      sensor = std::make_unique<ForceSensor>(
          std::make_unique<TraceSource>(trace_, "trace", clock_, TraceSource::Times::recorded));
    Probe probe({std::move(sensor), [this](KeyMonitor::Handler handler) { return listen(handler); },
                 words_},
                out, folder.path(),
                {[this] { return clock_->now(); },
                 [this](auto pause) { advance(static_cast<uint64_t>(pause.count())); }});
    return probe.run(seconds);
  }

  std::ostringstream out;
  TempFolder folder;
  KeyScript keys;

 private:
  std::unique_ptr<KeyMonitor> listen(const KeyMonitor::Handler& handler) {
    KeyMonitorOptions options;
    options.now = [this] { return clock_->now(); };
    return std::make_unique<KeyMonitor>(std::make_unique<ScriptedKeySource>(keys), handler,
                                        options);
  }

  void advance(uint64_t ms) {
    for (const uint64_t end = clock_->now() + ms * millisecond; clock_->now() < end;) {
      clock_->advanceTo(clock_->now() + millisecond);
      if (std::count(keysAtMs_.begin(), keysAtMs_.end(), clock_->now() / millisecond) == 0)
        continue;
      keys.press(0);
      keys.release(0);
    }
  }

  const PlatformWords words_{.keyAccessForProbe = "no access to keys", .noSensor = "no sensor"};
  std::vector<uint64_t> keysAtMs_;
  MotionTrace trace_;
  std::shared_ptr<VirtualTraceClock> clock_ = std::make_shared<VirtualTraceClock>(0);
};

TEST(Probe, MeasuresEveryKeyOfARunLongerThanTheSensorRemembers) {
  ProbeRun machine({1000, 1150, 9990});
  ASSERT_EQ(machine.run(10), 0) << machine.out.str();
  const std::string text = machine.out.str();
  EXPECT_NE(text.find("Keystrokes: 3   sensor: 1000 Hz"), std::string::npos) << text;
  EXPECT_NE(text.find("p10 +3.0   median +3.0   p90 +3.0"), std::string::npos) << text;
  EXPECT_NE(text.find("window: 100%"), std::string::npos) << text;
  EXPECT_NE(text.find("10s left, 0 keys so far"), std::string::npos) << text;
  std::smatch saved;
  ASSERT_TRUE(
      std::regex_search(text, saved, std::regex("Saved: (\\S+)\\.csv \\(\\+ -traces\\.csv\\)")))
      << text;
  const std::string csv = testing::contentOf(saved[1].str() + "-traces.csv");
  EXPECT_EQ(std::count(csv.begin(), csv.end(), '\n'), 1 + 3 * 101);
  EXPECT_TRUE(std::filesystem::exists(saved[1].str() + ".csv"));
}

TEST(Probe, SaysWhatIsMissing) {
  ProbeRun machine({});
  EXPECT_EQ(machine.run(1, false), 1);
  EXPECT_EQ(machine.run(1), 1);
  machine.keys.allowed = false;
  EXPECT_EQ(machine.run(1), 1);
  std::string countdown;
  for (const char* left : {"1", "1", "1", "1", "1", "1", "1", "1", "1", "1", "0"})
    countdown += "\r" + std::string(left) + "s left, 0 keys so far ";
  EXPECT_EQ(machine.out.str(),
            "no sensor\nTobrin force probe, 1 seconds.\n"
            "Switch to any text field (Notes, a browser...) and type: some normal typing,\n"
            "a few feather-light taps, and a few really hard hits.\n" +
                countdown + "\nNo keys recorded.\nno access to keys\n");
}

}  // namespace
}  // namespace tobrin::probe
