#include "Diagnostics/SelfTest.h"

#include <atomic>
#include <ostream>

#include "Base/PrintableText.h"
#include "Engine/Conductor.h"
#include "Packs/PackLoader.h"

namespace tobrin {
namespace {

using namespace std::chrono_literals;

constexpr auto settleTime = 400ms;
constexpr auto holdTime = 50ms;
constexpr auto pauseTime = 80ms;
constexpr auto deliveryTime = 100ms;
// F14 to F17: real keys that nothing acts on. Not F13: the usual keyboard maps make it the key at
// which desktops open their settings.
constexpr uint16_t quietKeys[] = {107, 113, 106, 64};

EngineSettings muted() {
  EngineSettings settings;
  settings.volume = 0;
  return settings;
}

}  // namespace

int SelfTest::run() {
  checkEngine(checkPacks());
  if (failures_ == 0) {
    out_ << "All checks passed.\n";
    return 0;
  }
  out_ << failures_ << " check(s) failed.\n";
  return 1;
}

std::shared_ptr<const LoadedPack> SelfTest::checkPacks() {
  const auto packs = parts_.discoverPacks();
  check(!packs.empty(), "found " + std::to_string(packs.size()) + " sound packs",
        "install Tobrin again, or name a folder of packs in TOBRIN_PACKS");
  if (packs.empty()) return nullptr;
  try {
    auto pack = parts_.loadPack(packs.front());
    check(true,
          "loaded " + pack->info().name + " (" + std::to_string(pack->sampleCount()) + " takes, " +
              std::to_string(pack->memoryBytes() >> 10) + " KiB)",
          "");
    return pack;
  } catch (const std::exception& error) {
    check(false, "loaded " + packs.front().name + ": " + error.what(),
          "tobrin-packs check " + packs.front().id + ", or take the pack away");
    return nullptr;
  }
}

void SelfTest::checkEngine(std::shared_ptr<const LoadedPack> pack) {
  ForceSensor* const watched = parts_.sensor.get();
  Conductor conductor(parts_.conductorQueue,
                      std::make_unique<AudioOutput>(std::move(parts_.audioDevice)),
                      std::move(parts_.sensor));
  conductor.apply(muted(), true);
  conductor.setPack(std::move(pack));

  std::atomic<int> heard = 0;
  const auto monitor = parts_.listen([&](const KeyEvent& event) {
    heard.fetch_add(1, std::memory_order_relaxed);
    conductor.handle(event);
  });
  const bool isListening = monitor->start();
  const std::string tap(parts_.words.keyAccessCheck);
  check(isListening, isListening ? tap : tap + ": " + monitor->problem(),
        monitor->hasPermission() ? "access is there: mend what is named above, or log in again"
                                 : parts_.words.keyAccessForProbe);
  parts_.sleep(settleTime);
  checkDevice(conductor.audio());
  checkKeys(isListening, [&] { return heard.load(std::memory_order_relaxed); });
  checkSound(conductor.audio());
  checkSensor(watched);
  monitor->stop();
  conductor.shutdown();
}

void SelfTest::checkDevice(const AudioOutput& audio) {
  const bool isRunning = audio.isRunning();
  check(isRunning, "audio engine running: " + (isRunning ? audio.description() : audio.problem()),
        "start a sound server, or end the program that holds the sound card");
}

void SelfTest::checkSound(const AudioOutput& audio) {
  const uint64_t frames = audio.renderedFrames();
  check(frames > 0, "render callback ran (" + std::to_string(frames) + " frames)",
        "play a sound with another program; start the sound server again if it is silent too");
  check(audio.droppedCommands() == 0, "no dropped commands", "again when the machine is less busy");
}

void SelfTest::checkSensor(const ForceSensor* sensor) {
  if (sensor == nullptr) return skip(std::string(parts_.words.noSensorCheck));
  const uint64_t reports = sensor->reportsReceived();
  check(reports > 0,
        "motion sensor streaming (" + std::to_string(reports) + " reports)" +
            (reports > 0 ? "" : ": " + sensor->problem()),
        "another program may hold the sensor; a fixed strength works without it");
}

void SelfTest::checkKeys(bool isListening, const std::function<int()>& heard) {
  if (!isListening)
    return check(false, "synthetic key events: nothing listens", "what the keyboard tap needs");
  if (!parts_.typer->open()) return skip("synthetic key events (" + parts_.typer->problem() + ")");
  const int before = heard();
  int sent = 0;
  for (const uint16_t code : quietKeys) {
    sent += parts_.typer->send(code, KeyAction::down) ? 1 : 0;
    parts_.sleep(holdTime);
    sent += parts_.typer->send(code, KeyAction::up) ? 1 : 0;
    parts_.sleep(pauseTime);
  }
  parts_.sleep(deliveryTime);
  const int received = heard() - before;
  check(sent > 0 && received >= sent,
        "synthetic key events (" + std::to_string(received) + " of " + std::to_string(sent) +
            " heard)",
        "in a terminal of the session in which you type");
}

void SelfTest::check(bool passed, const std::string& text, std::string_view advice) {
  out_ << (passed ? "PASS  " : "FAIL  ") << printable(text) << std::endl;
  if (passed) return;
  ++failures_;
  out_ << "      Try: " << printable(advice) << std::endl;
}

void SelfTest::skip(const std::string& text) {
  out_ << "SKIP  " << printable(text) << std::endl;
}

}  // namespace tobrin
