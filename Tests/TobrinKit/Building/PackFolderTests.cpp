#include <gtest/gtest.h>

#include <fstream>

#include "Building/PackFolder.h"
#include "Support/Failure.h"
#include "Support/TempFolder.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;
using testing::entriesIn;

TEST(PackFolder, TheOldPackStaysUntilTheNewOneIsWhole) {
  const testing::TempFolder folder;
  folder.write("mine/pack.json", "old");
  folder.write("mine/key.wav", "old");
  folder.write(".mine.building-1/pack.json", "left by an interrupted build");
  const fs::path target = folder.path() / "mine";
  const PackFolder other(target);  // at work next to it
  EXPECT_FALSE(fs::exists(other.aside() / "pack.json"));
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
  EXPECT_TRUE(fs::exists(other.aside()));
  EXPECT_EQ(entriesIn(folder.path()), 2) << "nothing else is left behind";
}

TEST(PackFolder, ReplacesPacksByAnyNameAndNothingElse) {
  const testing::TempFolder folder;
  const fs::path pack = folder.write("mine/pack.json", "").parent_path();
  folder.write("letters/first.txt", "dear");
  const fs::path link = folder.path() / "link";
  fs::create_symlink("mine", link);
  fs::create_symlink("nothing", folder.path() / "astray");
  for (const fs::path& name : {pack, pack / "", link, link / "", pack / "." / ".." / "mine"})
    EXPECT_EQ(PackFolder::replaceable(name), pack) << name;
  const fs::path before = fs::current_path();
  fs::create_directory(pack / "below");
  fs::current_path(pack / "below");
  for (const auto& [name, reason] : {std::pair<fs::path, const char*>{"..", "this command runs in"},
                                     {folder.path() / "letters", "is no sound pack"},
                                     {pack / "pack.json", "is no sound pack"},
                                     {folder.path() / "astray", "leads nowhere"}}) {
    const auto failure = testing::failureOf([&] { (void)PackFolder::replaceable(name); });
    EXPECT_NE(failure.find(reason), std::string::npos) << failure;
  }
  fs::current_path(before);
}

}  // namespace
}  // namespace tobrin
