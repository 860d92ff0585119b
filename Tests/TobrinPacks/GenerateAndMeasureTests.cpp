#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <numbers>

#include "Building/WAVWriter.h"
#include "Packs/PackLibrary.h"
#include "RunWorkshop.h"
#include "Support/TempFolder.h"

namespace tobrin {
namespace {

using testing::Outcome;
using testing::run;

TEST(GenerateCommand, WritesTheNamedPacksAndNothingElse) {
  const testing::TempFolder folder;
  const std::string into = folder.path() / "packs";
  ASSERT_EQ(run({"generate", "dome", "cream", "dome", "--into", into}).status, 0);
  const auto packs = PackLibrary::discover(into, false);
  ASSERT_EQ(packs.size(), 2u);
  EXPECT_EQ(packs[0].id + packs[1].id, "creamdome");

  EXPECT_EQ(run({"generate", "cream"}).status, 2) << "no folder";
  const Outcome unknown = run({"generate", "panda", "leopold", "--into", into});
  EXPECT_EQ(unknown.status, 2);
  EXPECT_NE(unknown.err.find("leopold"), std::string::npos);
  EXPECT_EQ(PackLibrary::discover(into, false).size(), 2u);
  EXPECT_EQ(run({"generate", "cream", "--into", folder.write("file", "")}).status, 1);
}

TEST(LoudnessCommand, MeasuresFilesAtAnyRateAndPacksInUse) {
  const testing::TempFolder folder;
  const std::string file = folder.path() / "sine.wav";
  std::vector<float> sine(5 * 44'100);
  for (std::size_t n = 0; n < sine.size(); ++n)
    sine[n] = 0.1f * static_cast<float>(
                         std::sin(2 * std::numbers::pi * 997 * static_cast<double>(n) / 44'100));
  WAVWriter::write(sine, sine, 44'100, file);
  const auto measured = nlohmann::json::parse(run({"loudness", file, "--json"}).out);
  EXPECT_EQ(measured["path"], file);
  EXPECT_NEAR(measured["lufs"].get<double>(), -20, 0.05);
  WAVWriter::write(sine, {}, 44'100, file);
  EXPECT_EQ(run({"loudness", file}).out, "-23.01 LUFS\n");

  WAVWriter::write(std::span(sine).first(4'000), {}, 44'100, file);
  EXPECT_EQ(nlohmann::json::parse(run({"loudness", file, "--json"}).out)["lufs"], nullptr);

  ASSERT_EQ(run({"generate", "cream", "--into", folder.path()}).status, 0);
  const auto pack = nlohmann::json::parse(run({"loudness", folder.path() / "cream", "--json"}).out);
  EXPECT_NEAR(pack["lufs"].get<double>(), -26, 2);
  EXPECT_EQ(run({"loudness", folder.path()}).status, 1);
}

}  // namespace
}  // namespace tobrin
