// How long a new pack takes from its selection to the first sound of the phrase that presents it:
// loading, handing over to the conductor, and the wait for the next block.
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <thread>
#include <vector>

#include "Base/MachTime.h"
#include "Engine/Conductor.h"
#include "Packs/PackLibrary.h"
#include "Packs/PackLoader.h"
#include "Support/PacedDevice.h"
#include "Support/Report.h"
#include "Synth/PackGenerator.h"
#include "Threads/AsioQueue.h"

namespace tobrin {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

constexpr int switches = 15;

double switchTime(Conductor& conductor, const PackInfo& info, PacedDevice::FirstSound& firstSound) {
  // The phrase before has ended, and its pack is gone.
  std::this_thread::sleep_for(2500ms);
  firstSound = 0;
  const uint64_t selected = machNow();
  conductor.setPack(loadPack(info, AudioOutput::sampleRate));
  conductor.audition();
  while (firstSound == 0)
    std::this_thread::sleep_for(1ms);
  return machMilliseconds(firstSound - selected);
}

void measure(Report& report, const fs::path& folder) {
  std::vector<PackInfo> packs;
  for (std::size_t i = 0; i < 2; ++i) {
    const fs::path pack = generatePack(SynthProfile::starterPacks()[i], folder);
    packs.push_back(PackInfo::read(pack, false));
  }
  PacedDevice::FirstSound firstSound = 0;
  AsioQueue queue(Conductor::queueName);
  Conductor conductor(
      queue, std::make_unique<AudioOutput>(std::make_unique<PacedDevice>(&firstSound)), nullptr);
  conductor.apply({}, true);
  std::vector<double> times;
  times.reserve(switches);
  for (int i = 0; i < switches; ++i)
    times.push_back(switchTime(conductor, packs[static_cast<std::size_t>(i) % 2], firstSound));
  conductor.shutdown();
  std::ranges::sort(times);
  const double median = times[switches / 2];
  const double spread = (times[switches * 3 / 4] - times[switches / 4]) / median;
  report.add(Figure::under("pack switch, selection to first sound", median, "ms", 100, spread));
}

}  // namespace
}  // namespace tobrin

int main(int argc, char** argv) {
  tobrin::Report report(argc, argv);
  const auto folder = std::filesystem::temp_directory_path() /
                      ("tobrin-bench-switch-" + std::to_string(::getpid()));
  tobrin::measure(report, folder);
  std::filesystem::remove_all(folder);
}
