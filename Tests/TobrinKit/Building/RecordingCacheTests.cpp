#include "Building/RecordingCache.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "Support/Failure.h"
#include "Support/TempFolder.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;
using testing::contentOf;

/// Ends with that status, and writes only a half of what it should where that is a failure.
struct Converter final : ProcessRunner {
  int status = 0;

  int run(const fs::path&, const std::vector<std::string>& arguments) const override {
    if (status == 127) return status;  // nothing was run
    const std::string whole = contentOf(*(std::ranges::find(arguments, "-i") + 1));
    std::ofstream(arguments.back()) << whole.substr(0, status == 0 ? whole.size() : 2);
    return status;
  }
};

TEST(RecordingCache, GivesNothingThatIsHalfOrOfAnotherRecording) {
  const testing::TempFolder folder;
  const fs::path cache = folder.path() / "cache";
  Converter converter;
  std::string reason;
  const auto fetched = [&](const fs::path& address, int status) {
    converter.status = status;
    PackRecipe::Source source;
    source.freesoundID = 7;
    source.previewURL = address;
    std::string content = "failed";
    reason =
        testing::failureOf([&] { content = contentOf(fetchRecording(source, cache, converter)); });
    return content;
  };
  const fs::path first = folder.write("first.ogg", "one"), other = folder.write("other.ogg", "two");
  constexpr int missing = 127, broken = 1, good = 0;
  EXPECT_EQ(fetched(first, good), "one");
  EXPECT_EQ(fetched(first, broken), "one") << "from the cache";
  EXPECT_EQ(fetched(other, missing), "failed");
  EXPECT_EQ(fetched(other, missing), "failed") << "the first one's sound is still there";
  fs::resize_file(cache / "7.ogg", 1);
  EXPECT_EQ(fetched(other, good), "t") << "it was fetched before";
  EXPECT_EQ(fetched(first, broken), "failed");
  EXPECT_TRUE(testing::filesIn(cache).empty());
  EXPECT_EQ(fetched(first, good), "one");
  std::ofstream(cache / "7.wav") << "half";
  EXPECT_EQ(fetched(first, good), "half");
  std::ofstream(cache / "7.converting") << "interrupted";
  EXPECT_EQ(fetched(first, good), "one");

  const fs::path published = "http://127.0.0.1:1/x.ogg";
  EXPECT_EQ(fetched(published, good), "failed");
  fs::remove_all(cache);
  folder.write("cache/7.ogg", "fetched");
  EXPECT_EQ(fetched(published, broken), "failed");
  EXPECT_EQ(reason, "Can't read 7.ogg: ffmpeg failed (is ffmpeg installed?)");
  folder.write("cache/7.wav", "by hand");
  EXPECT_EQ(fetched(published, good), "by hand");
  EXPECT_EQ(fetched(folder.path() / "gone.ogg", good), "by hand");
  EXPECT_EQ(fetched(first, good), "one");
}

}  // namespace
}  // namespace tobrin
