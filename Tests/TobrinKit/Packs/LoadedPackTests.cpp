#include "Packs/LoadedPack.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "Base/PackError.h"
#include "Packs/PackLoader.h"
#include "Support/AudioFiles.h"
#include "Support/Failure.h"
#include "Support/TempFolder.h"
#include "Support/TestPack.h"

namespace tobrin {
namespace {

using testing::TempFolder;
using testing::TestPack;
using testing::wav16;

std::vector<float> gains(const LoadedPack& pack, KeyGroup group) {
  const auto layers = pack.layers(group, 0);
  return {layers.gains.begin(), layers.gains.end()};
}

std::vector<float> values(const LoadedPack& pack, KeyGroup group, std::size_t variant) {
  std::vector<float> firsts;
  for (const TBSample& sample : pack.layers(group, variant).samples)
    firsts.push_back(sample.left[0]);
  return firsts;
}

TEST(LoadedPack, FillsMissingTiersFromTheNearestTheSofterOfTwo) {
  const auto pack = TestPack()
                        .down(KeyGroup::alpha, Tier::medium, 0.2f)
                        .down(KeyGroup::space, Tier::soft, 0.1f)
                        .down(KeyGroup::space, Tier::hard, 0.3f)
                        .make();
  const float step = 1.6f;
  const std::vector<float> fromMedium = {1 / step, 1, step, step * step};
  for (const KeyGroup group : {KeyGroup::alpha, KeyGroup::modifier})
    for (std::size_t tier = 0; tier < tierCount; ++tier)
      EXPECT_FLOAT_EQ(gains(*pack, group)[tier], fromMedium[tier]);
  EXPECT_EQ(gains(*pack, KeyGroup::space), (std::vector<float>{1, step, 1, step}));
  EXPECT_EQ(values(*pack, KeyGroup::space, 0), (std::vector<float>{0.1f, 0.1f, 0.3f, 0.3f}));
  EXPECT_EQ(pack->memoryBytes(), 3u * 480 * 4);
}

TEST(LoadedPack, FillsMissingGroupsFromAlphaElseFromAnother) {
  const auto pack = TestPack()
                        .down(KeyGroup::enter, Tier::soft, 0.5f)
                        .up(KeyGroup::enter, 0.6f)
                        .make("enter only");
  EXPECT_EQ(values(*pack, KeyGroup::alpha, 7)[0], 0.5f);
  EXPECT_FALSE(pack->release(KeyGroup::alpha, 0)) << "releases come from alpha alone";
  EXPECT_EQ(TestPack::simple()->release(KeyGroup::space, 3)->sample.left[0], 0.05f);
  EXPECT_THROW(TestPack().up(KeyGroup::alpha, 1).make("x"), PackError);
}

/// A pack folder of one `alpha` tier whose paths are given.
class LoadedPackFolder : public ::testing::Test {
 protected:
  void manifest(const std::string& paths, const std::string& rest = "") const {
    folder_.write("MyPack/pack.json",
                  R"({"formatVersion":1,"id":"my-id","name":"n","kind":"k","groups":{"alpha":)"
                  R"({"down":{"Medium":[)" +
                      paths + R"(],"loud":["absent.wav"],"hard":[]}})" + rest + "}}");
  }
  void wav(const std::string& name, std::size_t frames) const {
    folder_.write("MyPack/" + name, wav16({}, std::vector<int16_t>(frames, 8192)));
  }
  [[nodiscard]] std::shared_ptr<const LoadedPack> load() const {
    return loadPack(PackInfo::read(folder_.path() / "MyPack", false), 48000);
  }
  [[nodiscard]] std::string failure() const {
    return testing::failureOf([this] { (void)load(); });
  }
  /// Paths "0.wav" to the one before `end`, as JSON.
  static std::string numbered(int end) {
    std::string paths;
    for (int i = 0; i < end; ++i)
      paths += (i == 0 ? "\"" : ",\"") + std::to_string(i) + ".wav\"";
    return paths;
  }
  TempFolder folder_;
};

TEST_F(LoadedPackFolder, DecodesEachFileOnceAndSkipsUnknownNames) {
  wav("sub/a.wav", 100);
  std::filesystem::create_symlink("sub/a.wav", folder_.path() / "MyPack/link.wav");
  manifest(R"("sub/a.wav","link.wav","sub/a.wav")", R"(,"keys":{"down":{"soft":["absent.wav"]}})");
  const auto pack = load();
  EXPECT_EQ(pack->memoryBytes(), 800u);
  EXPECT_EQ(pack->variantCount(KeyGroup::space), 3u);
}

// Files that are converted one after another, loud and quiet, of both kinds and many lengths, by
// however many threads.
TEST_F(LoadedPackFolder, ConvertsEachFileAsIfItWereAlone) {
  std::vector<std::unique_ptr<SampleBuffer>> alone;
  std::mt19937 generator(3);
  for (std::size_t n = 0; n < 11; ++n) {
    const uint16_t channels = n % 3 == 2 ? 1 : 2;
    const uint32_t rate = n == 5 ? 44099 : n == 6 || n == 7 ? 32000 : 44100;
    const std::size_t frames = n * 129;
    std::vector<float> samples(channels * frames);
    std::uniform_real_distribution<float> level(-1, 1);
    for (float& sample : samples)
      sample = n == 6 ? 1e30F : level(generator);
    const auto file =
        folder_.write("MyPack/" + std::to_string(n) + ".wav",
                      testing::wavFloat({.channels = channels, .rate = rate}, samples));
    alone.push_back(SampleBuffer::load(file, 48000));
    EXPECT_EQ(alone.back()->frames(), std::llround(static_cast<double>(frames) * 48000 / rate));
  }
  manifest(numbered(11));
  for (const unsigned threads : {1u, 3u}) {
    const auto contents = PackLoader(folder_.path() / "MyPack", 48000, threads)
                              .load(PackManifest::read(folder_.path() / "MyPack"));
    for (std::size_t n = 0; n < alone.size(); ++n) {
      const SampleBuffer& sound = *contents.buffers[n];
      ASSERT_EQ(sound.frames(), alone[n]->frames()) << n;
      for (const auto channel : {&SampleBuffer::left, &SampleBuffer::right})
        for (std::size_t i = 0; i < sound.frames(); ++i) {
          const float x = (sound.*channel)()[i];
          ASSERT_NEAR(x, (*alone[n].*channel)()[i], std::abs(x) * 1e-6F + 1e-7F) << n;
        }
    }
  }
}

TEST_F(LoadedPackFolder, RefusesPathsThatLeaveTheFolder) {
  manifest("");
  EXPECT_EQ(failure(), "Pack my-id has no usable sounds");
  folder_.write("outside.wav", wav16({}, {1}));
  const auto pack = folder_.path() / "MyPack";
  wav("a.wav", 1);
  std::filesystem::create_directories(pack / "in");
  std::filesystem::create_symlink("../outside.wav", pack / "link.wav");
  std::filesystem::create_directory_symlink("..", pack / "parent");
  std::filesystem::create_symlink("/dev/zero", pack / "zero.wav");
  for (const std::string path : {"../outside.wav", "in/../a.wav", "a..wav", "/tmp/x.wav",
                                 "link.wav", "parent/outside.wav", "zero.wav"}) {
    manifest("\"a.wav\",\"" + path + "\"");
    EXPECT_EQ(failure(), "Invalid MyPack: path escapes pack: " + path);
  }
  for (const char* path : {"", "in", "in/b.wav", "a.wav\\u0000"}) {
    manifest("\"" + std::string(path) + "\"");
    EXPECT_TRUE(failure().starts_with("Can't read ")) << failure();
  }
}

TEST_F(LoadedPackFolder, MeetsTheFirstErrorInTheOrderOfTheLists) {
  for (int i = 0; i < 40; ++i)
    wav(std::to_string(i) + ".wav", 200);
  manifest(numbered(40));
  folder_.write("MyPack/31.wav", "no sound");
  const std::string unreadable = failure();
  EXPECT_TRUE(unreadable.starts_with("Can't read 31.wav: ")) << unreadable;
  manifest(numbered(40) + ",\"../x\"");
  EXPECT_EQ(failure(), unreadable);
  std::filesystem::remove(folder_.path() / "MyPack/8.wav");
  EXPECT_EQ(failure(), "Can't read 8.wav: No such file or directory");
}

TEST_F(LoadedPackFolder, HoldsTheBudgetToTheFrame) {
  constexpr std::size_t half = LoadedPack::memoryBudget / 8 / 2;
  const auto sparse = [&](const std::string& name, std::size_t frames) {
    folder_.write("MyPack/" + name, wav16({.dataBytes = static_cast<int64_t>(2 * frames)}, {}));
    std::filesystem::resize_file(folder_.path() / "MyPack" / name, 44 + 2 * frames);
  };
  sparse("0.wav", half);
  sparse("1.wav", half);
  for (int i = 2; i < 16; ++i)
    wav(std::to_string(i) + ".wav", 0);
  manifest(numbered(16));
  EXPECT_EQ(load()->memoryBytes(), LoadedPack::memoryBudget / 2) << "mono files take one channel";
  wav("9.wav", 1);
  EXPECT_EQ(failure(), "Invalid MyPack: pack is too large");
  folder_.write("MyPack/3.wav", "no sound");
  EXPECT_TRUE(failure().starts_with("Can't read 3.wav")) << "the earlier fault is named";
  sparse("0.wav", uint64_t{0x7FFFFF00});
  EXPECT_EQ(failure(), "Invalid MyPack: pack is too large");
}

}  // namespace
}  // namespace tobrin
