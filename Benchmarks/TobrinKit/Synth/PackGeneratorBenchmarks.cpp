// What the starter packs cost, their files included.
#include <unistd.h>

#include <ctime>
#include <filesystem>
#include <string>

#include "Support/Interleaved.h"
#include "Support/Report.h"
#include "Synth/PackGenerator.h"

namespace tobrin {
namespace {

double processorSeconds() {
  return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

void allStarterPacks(Report& report) {
  std::string name = "tobrin-bench-synth-";
  name.append(std::to_string(::getpid()));
  const auto folder = std::filesystem::temp_directory_path() / name;
  std::size_t runs = 0;
  double processor = -processorSeconds();
  const auto timings =
      timeInterleaved({contestant("two threads",
                                  [&] {
                                    for (const SynthProfile& profile : SynthProfile::starterPacks())
                                      generatePack(profile, folder, allKeyGroups, 2);
                                    ++runs;
                                  })},
                      {.rounds = 9});
  processor += processorSeconds();
  std::filesystem::remove_all(folder);
  report.add(Figure::under("all five packs, two threads", 1e3 * timings[0].median, "ms", 300,
                           timings[0].spread));
  // Two idle cores share this; what others do to the machine shows less in it.
  report.add(Figure::under("all five packs, processor time",
                           1e3 * processor / static_cast<double>(runs), "ms", 600, 0));
}

}  // namespace
}  // namespace tobrin

int main(int argc, char** argv) {
  tobrin::Report report(argc, argv);
  tobrin::allStarterPacks(report);
}
