#include "Building/PackFolder.h"

#include <gtest/gtest.h>

#include <fstream>

#include "Support/TempFolder.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

TEST(PackFolder, TheOldPackStaysUntilTheNewOneIsWhole) {
  const testing::TempFolder folder;
  folder.write("mine/pack.json", "old");
  folder.write("mine/key.wav", "old");
  folder.write(".mine.building-1/pack.json", "left by an interrupted build");
  const fs::path target = folder.path() / "mine";
  const auto refused = [](const fs::path&, const fs::path&) { return false; };
  for (const bool isFinished : {false, true}) {
    PackFolder pack(target / "");
    EXPECT_TRUE(fs::is_empty(pack.aside()));
    std::ofstream(pack.aside() / "pack.json") << "newer";
    EXPECT_EQ(fs::file_size(target / "pack.json"), 3u);
    if (isFinished) pack.moveIntoPlace(refused);
  }
  EXPECT_EQ(fs::file_size(target / "pack.json"), 5u);
  EXPECT_FALSE(fs::exists(target / "key.wav"));
  const fs::directory_iterator entries(folder.path());
  EXPECT_EQ(std::distance(entries, fs::directory_iterator()), 2) << "nothing else is left behind";
}

}  // namespace
}  // namespace tobrin
