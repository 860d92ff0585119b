#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

#include "RunWorkshop.h"
#include "Support/AudioFiles.h"
#include "Support/KeptText.h"
#include "Support/TempFolder.h"

namespace tobrin {
namespace {

using testing::run;

std::string shortSum(const std::string& bytes) {
  uint64_t sum = 0xcbf29ce484222325;  // FNV-1a
  for (const char byte : bytes)
    sum = (sum ^ static_cast<unsigned char>(byte)) * 0x100000001b3;
  return std::to_string(sum);
}

/// Every file of the starter packs and some renders, on every processor.
TEST(SameBytes, StarterPacksTheirRendersAndHitsAreAsTheyWere) {
  const testing::TempFolder folder;
  const std::string into = folder.path();
  ASSERT_EQ(run({"generate", "--mouse", "--into", into}).status, 0);
  const std::vector<std::string> renders[] = {
      {"cream", "--format", "f32"},
      {"typewriter", "--wpm", "40", "--strength", "0.2", "--seed", "11"},
      {"panda", "--wpm", "220", "--strength", "2.9", "--tail", "0.1"}};
  for (const auto& options : renders) {
    std::vector<std::string> words = {"render", into + "/" + options.front(), "--out",
                                      into + "/" + options.front() + ".wav"};
    words.insert(words.end(), options.begin() + 1, options.end());
    words.insert(words.end(),
                 {"--text", "The quick brown fox jumps over the lazy dog, 1234567890!"});
    ASSERT_EQ(run(words).status, 0) << options.front();
  }
  std::string sums;
  for (const auto& [name, bytes] : testing::filesIn(folder.path()))
    sums += name + " " + shortSum(bytes) + "\n";
  testing::expectKeptText(sums, "TobrinPacks/same-bytes.txt");
  const std::string plot = into + "/plot.svg";
  const std::string options = folder.write("gain.json", R"({"gainDb": 6})");
  run({"slice", into + "/cream.wav", "--plot", plot, "--options", options});
  testing::expectKeptText(testing::contentOf(plot), "TobrinPacks/plot.svg");
}

using Json = nlohmann::json;
using testing::WavHeader;

/// Ten decaying clicks, half a second apart from 0.25 s on, the same in all channels.
std::string clicks(const WavHeader& header, double amplitude) {
  constexpr double seconds = 5.25;
  const auto frames = static_cast<std::size_t>(seconds * header.rate);
  std::vector<int16_t> samples;
  samples.reserve(frames * header.channels);
  for (std::size_t n = 0; n < frames; ++n) {
    const double at = static_cast<double>(n) / header.rate;
    const double since = std::fmod(at + 0.25, 0.5);
    const double x = at < 0.25 ? 0 : std::exp(-since / 0.01) * std::sin(9000 * since);
    const double value = std::clamp(amplitude * x, -1.0, 1.0) * 32767;
    samples.insert(samples.end(), header.channels, static_cast<int16_t>(value));
  }
  return testing::wav16(header, samples);
}

TEST(SliceCommand, FindsTheSameHitsInEveryLayoutAndRate) {
  const testing::TempFolder folder;
  const std::string whole = clicks({}, 0.5);
  const std::tuple<const char*, std::string, std::size_t> cases[] = {
      {"mono", whole, 10},
      {"8 channels", clicks({.channels = 8}, 0.5), 10},
      {"stereo at 44.1 kHz", clicks({2, 44100}, 0.5), 10},
      {"silence", testing::wav16({}, std::vector<int16_t>(48000)), 0},
      {"1 ms", testing::wav16({}, std::vector<int16_t>(48, 9000)), 0},
      {"truncated", whole.substr(0, whole.size() / 2), 5},
      {"clipped", clicks({}, 4), 10},
  };
  Json result;
  for (const auto& [label, content, count] : cases) {
    SCOPED_TRACE(label);
    const auto sliced = run({"slice", folder.write("recording.wav", content), "--json"});
    ASSERT_EQ(sliced.status, 0) << sliced.err;
    result = Json::parse(sliced.out);
    const Json& hits = result["hits"];
    ASSERT_EQ(hits.size(), count);
    for (std::size_t i = 0; i < count; ++i) {
      const double expected = 48000 * (0.25 + 0.5 * static_cast<double>(i));
      EXPECT_NEAR(hits[i]["onset"].get<double>(), expected, 48);
      EXPECT_EQ(hits[i]["clipped"], label == std::string("clipped"));
    }
  }
  EXPECT_TRUE(result["down"].empty()) << "of what is clipped";
  std::string known;
  for (const auto& [key, value] : result["hits"][0].items())
    known += key + " ";
  EXPECT_EQ(known,
            "brightness clipped decayMs energy gapAfter isBig isRelease onset peak preActivity ");
}

TEST(SliceCommand, GivesEachSoundToTheKeyThatWasTyped) {
  const testing::TempFolder folder;
  const std::string recording = folder.write("typing.wav", clicks({}, 0.5));
  std::string text = "time_ns,action,group,key\n";
  for (int64_t i = 0; i < 10; ++i) {  // the sound comes 70 ms after a key
    const int64_t time = 180'000'000 + 500'000'000 * i;
    text += std::to_string(time) + ",down,space,0\n" + std::to_string(time + 250'000'000) +
            ",up,space,0\n";
  }
  const std::string keys = folder.write("typing.keys.csv", text), plot = recording + ".svg";
  const auto sliced = run({"slice", recording, "--keys", keys, "--plot", plot, "--json"});
  ASSERT_EQ(sliced.status, 0) << sliced.err;
  const Json result = Json::parse(sliced.out);
  EXPECT_NEAR(result["fit"]["delay"].get<double>(), 0.07, 0.001);
  ASSERT_EQ(result["keys"].size(), 20u);
  for (std::size_t i = 0; i < 20; i += 2) {
    const Json &press = result["keys"][i], &release = result["keys"][i + 1];
    EXPECT_EQ(press["fate"], "good") << i;
    EXPECT_NEAR(press["onset"].get<double>(), 48000 * (0.25 + 0.25 * static_cast<double>(i)), 48);
    EXPECT_EQ(release["fate"], "unheard") << i;
    EXPECT_EQ(release["onset"], nullptr);
  }
  EXPECT_EQ(result["hits"].size(), 10u);
  EXPECT_EQ(result["hits"][0]["isBig"], true);
  EXPECT_EQ(result["down"], Json::parse(R"({"space": {"medium": 4}})"));
  EXPECT_NE(testing::contentOf(plot).find("big press 10"), std::string::npos);
  const auto words = run({"slice", recording, "--keys", keys}).out;
  EXPECT_NE(words.find("10 good, 10 unheard"), std::string::npos) << words;
  EXPECT_NE(words.find("takes for space: medium 4\n"), std::string::npos) << words;
  const auto refused = run({"slice", recording, "--keys", folder.write("bad.csv", text + "x\n")});
  EXPECT_EQ(refused.status, 1);
  EXPECT_NE(refused.err.find("bad.csv:22: "), std::string::npos) << refused.err;
}

}  // namespace
}  // namespace tobrin
