#include <gtest/gtest.h>

#include "Base/AtomicFile.h"
#include "Support/Failure.h"
#include "Support/TempFolder.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;
using testing::contentOf;
using testing::entriesIn;

TEST(AtomicFile, ReplacesContentAndKeepsPermissionsAndLinks) {
  const testing::TempFolder folder;
  const fs::path file = folder.write("settings.json", "old and longer");
  fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
  writeFileAtomically(file, "new");
  EXPECT_EQ(contentOf(file), "new");
  EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_EQ(entriesIn(folder.path()), 1);
  fs::create_symlink(file, folder.path() / "link");
  writeFileAtomically(folder.path() / "link", "newest");
  EXPECT_TRUE(fs::is_symlink(folder.path() / "link"));
  EXPECT_EQ(contentOf(file), "newest");
}

TEST(AtomicFile, FailureNamesTheTargetAndLeavesNothingBehind) {
  const testing::TempFolder folder;
  const fs::path occupied = folder.path() / "folder";
  fs::create_directory(occupied);
  for (const fs::path& target : {occupied, folder.path() / "missing/file"}) {
    const auto failure = testing::failureOf([&] { writeFileAtomically(target, "text"); });
    EXPECT_NE(failure.find("[" + target.string() + "]"), std::string::npos) << failure;
  }
  EXPECT_EQ(entriesIn(folder.path()), 1);
}

}  // namespace
}  // namespace tobrin
