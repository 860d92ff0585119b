#include "Synth/PackGenerator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>
#include <vector>

#include "Packs/LoadedPack.h"
#include "Packs/RegularFile.h"
#include "Support/TempFolder.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

std::map<std::string, std::string> filesIn(const fs::path& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::directory_iterator(folder))
    files[entry.path().filename()] = RegularFile(entry.path()).readText(1 << 24);
  return files;
}

TEST(PackGenerator, SameBytesOnAnyNumberOfThreadsInPlaceOfWhatWasThere) {
  const testing::TempFolder folder;
  const auto generate = [&](unsigned threads) {
    return filesIn(
        PackGenerator::generate(SynthProfile::panda(), folder.path() / "new/packs", threads));
  };
  const auto first = generate(1);
  folder.write("new/packs/panda/stale.wav", "from an earlier version");
  EXPECT_EQ(generate(3), first);
  EXPECT_EQ(first.size(), 61u);
}

TEST(PackGenerator, ManifestListsEveryFileOnceAndThePackLoads) {
  const testing::TempFolder folder;
  for (const SynthProfile& profile : SynthProfile::starterPacks()) {
    const fs::path packFolder = PackGenerator::generate(profile, folder.path());
    std::multiset<std::string> unlisted;
    for (const auto& [name, bytes] : filesIn(packFolder))
      unlisted.insert(name);
    unlisted.erase(PackManifest::fileName);
    for (const auto& [groupName, group] : LoadedPack::readManifest(packFolder).groups) {
      for (const std::string& file : *group.up)
        EXPECT_EQ(unlisted.erase(file), 1u) << file;
      for (const auto& [tierName, files] : group.down)
        for (const std::string& file : files)
          EXPECT_EQ(file.starts_with(groupName + "-" + tierName + "-") + unlisted.erase(file), 2u);
    }
    EXPECT_TRUE(unlisted.empty());
    const auto pack = LoadedPack::load(PackInfo::read(packFolder, false), 48'000);
    EXPECT_EQ(pack->info().name, profile.name);
    EXPECT_EQ(pack->takeCount(KeyGroup::alpha, Tier::slam), 4u);
  }
}

TEST(PackGenerator, LevelsThePackToItsLoudestMediumLetter) {
  const testing::TempFolder folder;
  const fs::path pack = PackGenerator::generate(SynthProfile::dome(), folder.path());
  const auto peak = [&](const std::string& name) {
    return SampleBuffer::load(pack / name, 48'000)->peak();
  };
  float loudest = 0;
  for (const char* number : {"1", "2", "3", "4"})
    loudest = std::max(loudest, peak(std::string("alpha-medium-") + number + ".wav"));
  EXPECT_NEAR(loudest, 0.316f, 1e-4f);
  EXPECT_LT(peak("alpha-soft-1.wav"), peak("alpha-medium-1.wav"));
  EXPECT_LT(peak("alpha-up-1.wav"), peak("alpha-medium-1.wav"));
}

TEST(PackGenerator, FailuresThrowAndTouchNothingElse) {
  const testing::TempFolder folder;
  const fs::path file = folder.write("packs/file", "mine");
  EXPECT_THROW(PackGenerator::generate(SynthProfile::cream(), file), fs::filesystem_error);
  for (const char* id : {"", "..", "a/b"}) {
    SynthProfile profile = SynthProfile::cream();
    profile.id = id;
    EXPECT_THROW(PackGenerator::generate(profile, folder.path() / "packs"), std::invalid_argument);
  }
  EXPECT_EQ(RegularFile(file).readText(100), "mine");
}

}  // namespace
}  // namespace tobrin
