#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <system_error>

#include "Base/AtomicFile.h"
#include "Base/ExchangeFolders.h"
#include "Base/FlushToDisk.h"
#include "Base/ParallelFor.h"
#include "Base/ReadJson.h"
#include "Base/RegularFile.h"
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
  std::vector<std::string> flushed;
  writeFileAtomically(file, "newer", [&](const fs::path& path) {
    const std::string name = path.filename();
    EXPECT_TRUE(path == folder.path() ||
                (name.starts_with(".settings.json.") && name.ends_with(".tmp")))
        << name;
    flushed.push_back((path == folder.path() ? "folder," : contentOf(path) + ",") +
                      contentOf(file));
  });
  EXPECT_EQ(flushed, (std::vector<std::string>{"newer,new", "folder,newer"}));
  writeFileAtomically(folder.path() / std::string(255, 'x'), "");
  fs::remove(folder.path() / std::string(255, 'x'));
  fs::create_symlink(file, folder.path() / "link");
  writeFileAtomically(folder.path() / "link", "newest");
  EXPECT_TRUE(fs::is_symlink(folder.path() / "link"));
  EXPECT_EQ(contentOf(file), "newest");
}

TEST(FlushToDisk, FailsWhereAFileIsNotThere) {
  const testing::TempFolder folder;
  const fs::path file = folder.write("file", "text"), absent = folder.path() / "absent";
  for (const fs::path& path : {file, folder.path(), fs::path()}) {
    errno = EIO;  // of an earlier call
    EXPECT_EQ(testing::failureOf([&] { flushToDisk(path); }), "(none)") << path;
  }
  EXPECT_EQ(
      testing::failureOf([&] { flushToDisk(absent); }),
      "filesystem error: can't write to disk: No such file or directory [" + absent.string() + "]");
}

TEST(ExchangeFolders, LeavesBothWhereOneIsNotThere) {
  const testing::TempFolder folder;
  const fs::path one = folder.write("one/file", "1").parent_path(), other = folder.path() / "other";
  EXPECT_FALSE(exchangeFolders(one, other));
  folder.write("other/file", "2");
  EXPECT_TRUE(exchangeFolders(one, other));
  EXPECT_EQ(contentOf(one / "file") + contentOf(other / "file"), "21");
}

TEST(ReadJson, NamesTheLineAndColumnWhereItGaveUp) {
  for (const auto& [text, place] :
       {std::pair("", "line 1, column 1"), {"{\n\n  \"a\": ?", "line 3, column 8"}})
    EXPECT_EQ(testing::failureOf([&, json = text] { (void)readJson(json); }),
              std::string("not valid JSON from ") + place + " on");
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

TEST(RegularFile, ReadsWhatIsOneUpToItsLimit) {
  const testing::TempFolder folder;
  const fs::path file = folder.write("file", "12345"), pipe = folder.path() / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(RegularFile(file).readText(5), "12345");
  const fs::path growing = "/proc/self/status";  // its size is 0
  EXPECT_TRUE(RegularFile(growing).readText(100'000).ends_with('\n'));
  const std::tuple<fs::path, uint64_t, std::errc> rows[] = {
      {file, 4, std::errc::file_too_large},
      {growing, 100, std::errc::file_too_large},
      {folder.path(), 9, std::errc::is_a_directory},
      {pipe, 9, std::errc::invalid_argument},
      {folder.path() / "absent", 9, std::errc::no_such_file_or_directory},
      {file.string() + std::string("\0", 1), 9, std::errc::no_such_file_or_directory}};
  for (const auto& [path, most, reason] : rows) {
    try {
      (void)RegularFile(path).readText(most);
      ADD_FAILURE() << path;
    } catch (const std::system_error& error) {
      EXPECT_EQ(error.code(), reason) << path;
    }
  }
}

TEST(ParallelFor, RunsEachPieceOnceAndGivesUpAfterAnError) {
  for (const unsigned threads : {0u, 1u, 3u, 200u}) {
    std::array<std::atomic<int>, 100> runs{};
    const auto work = [&](bool fails) {
      return testing::failureOf([&] {
        parallelFor(runs.size(), threads, [&](std::size_t i) {
          ++runs[i];
          if (fails && i >= 7) throw std::runtime_error(std::to_string(i));
        });
      });
    };
    EXPECT_EQ(work(false), "(none)");
    EXPECT_TRUE(std::ranges::all_of(runs, [](const auto& count) { return count == 1; }));
    EXPECT_EQ(work(true), "7") << "the first of " << threads;
    const auto again = std::ranges::count_if(runs, [](const auto& count) { return count == 2; });
    EXPECT_TRUE(threads != 1 || again == 8) << again;
  }
}

}  // namespace
}  // namespace tobrin
