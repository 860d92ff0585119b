#include <gtest/gtest.h>

#include <cmath>
#include <iostream>

#include "Commands.h"
#include "RunWorkshop.h"
#include "Support/CommandTexts.h"
#include "Support/ForeignPacks.h"

namespace tobrin {
namespace {

/// Five seconds of 997 Hz.
std::string tone(uint16_t channels) {
  std::vector<float> samples;
  for (std::size_t n = 0; n < 5U * 44'100 * channels; ++n)
    samples.push_back(0.1F * std::sin(0.142F * static_cast<float>(n / channels)));
  return testing::wavFloat({.channels = channels, .rate = 44'100}, samples);
}

TEST(PackWorkshop, AnswersEverythingAsItDid) {
  testing::Session session(testing::run);
  setenv("TOBRIN_PACKS", "bundled", 1);
  setenv("XDG_DATA_HOME", session.folder.path().c_str(), 1);
  setenv("XDG_CACHE_HOME", (session.folder.path() / "caches").c_str(), 1);
  testing::writeFiles(session.folder.path(),
                      {{"click.wav", testing::wav16({}, std::vector<int16_t>(480, 8000))},
                       {"mono.wav", tone(1)},
                       {"stereo.wav", tone(2)}});
  testing::writeFiles(session.folder.path() / "foreign", testing::foreign::files());
  session.expectAsKept("TobrinPacks/session.txt");
}

TEST(PackWorkshop, HelpIsAsItWas) {
  CLI::App app;
  for (const auto& add :
       {addListCommand, addCheckCommand, addGenerateCommand, addLoudnessCommand, addRenderCommand,
        addSliceCommand, addBuildCommand, addImportCommand, addExportCommand, addInstallCommand})
    add(app, {std::cout, std::cerr});
  const std::string help = testing::run({"--help"}).out;
  testing::expectKeptText(testing::textsOf(app) + help.substr(help.find("Examples:")),
                          "TobrinPacks/commands.txt");
}

}  // namespace
}  // namespace tobrin
