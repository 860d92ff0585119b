#include "Desktop/XdgTrash.h"

#include <gtest/gtest.h>

#include "Support/TempFolder.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

TEST(XdgTrash, TakesFoldersOfOneNameAndGivesEachBack) {
  const testing::TempFolder folder;
  const auto environment = [&](const char* name) {
    return std::string_view(name) == "XDG_DATA_HOME" ? std::optional(folder.path().string())
                                                     : std::nullopt;
  };
  const fs::path pack = folder.path() / "Packs/Ä b";
  folder.write("Packs/Ä b/one", "1");
  const auto first = moveToTrash(pack, environment);
  folder.write("Packs/Ä b/two", "2");
  const auto second = moveToTrash(pack, environment);
  EXPECT_FALSE(fs::exists(pack));
  EXPECT_EQ(fs::status(folder.path() / "Trash").permissions(), fs::perms::owner_all);
  EXPECT_EQ(testing::contentOf(folder.path() / "Trash/files/Ä b.2/two"), "2");
  const std::string note = testing::contentOf(folder.path() / "Trash/info/Ä b.2.trashinfo");
  const std::string start =
      "[Trash Info]\nPath=" + folder.path().string() + "/Packs/%C3%84%20b\nDeletionDate=20";
  EXPECT_EQ(note.substr(0, start.size()), start);

  EXPECT_THROW((void)moveToTrash("/proc/self/task", environment), fs::filesystem_error);
  EXPECT_EQ(testing::entriesIn(folder.path() / "Trash/info"), 2) << "no note of what stays";

  first();
  EXPECT_EQ(testing::contentOf(pack / "one"), "1");
  EXPECT_THROW(second(), fs::filesystem_error) << "its place is taken";
  EXPECT_EQ(testing::filesIn(folder.path() / "Trash").size(), 2U) << "the second and its note";
}

}  // namespace
}  // namespace tobrin
