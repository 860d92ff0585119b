#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "RunWorkshop.h"
#include "Support/TempFolder.h"
#include "Tools/Desktop/RawServer.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;
using testing::contentOf;
using testing::filesIn;
using testing::Outcome;
using testing::RawServer;
using testing::run;

/// A minute of leisurely typing on a synthesized keyboard, rendered once for all tests.
class BuildCommand : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    shared = new testing::TempFolder;
    recording = shared->path() / "typing.wav";
    ASSERT_EQ(run({"generate", "cream", "--into", shared->path()}).status, 0);
    std::string text;
    while (text.size() < 200)
      text += "every key has its own sound.\n";
    const auto made = run(
        {"render", shared->path() / "cream", "--text", text, "--wpm", "40", "--out", recording});
    ASSERT_EQ(made.status, 0) << made.err;
  }
  static void TearDownTestSuite() { delete shared; }

  static Json source(int64_t number, const std::string& url) {
    return {{"freesoundID", number},
            {"user", "somebody"},
            {"title", "typing"},
            {"license", "CC0"},
            {"previewURL", url}};
  }
  static std::string fileURL() { return "file://" + recording.string(); }

  Outcome build(const Json& sources, const fs::path& into,
                const std::vector<Json>& enter = {}) const {
    Json recipe = {
        {"id", "mine"}, {"name", "Mine"}, {"kind", "own"}, {"summary", ""}, {"sources", sources}};
    if (!enter.empty()) recipe["enterSources"] = enter;
    const std::string file = folder.write("recipe.json", recipe.dump());
    return run({"build", file, "--into", into, "--cache", cache, "--json"});
  }

  static inline testing::TempFolder* shared = nullptr;
  static inline fs::path recording;
  const testing::TempFolder folder;
  const fs::path cache = folder.path() / "cache";
  const fs::path pack = folder.path() / "mine";
};

TEST_F(BuildCommand, NeverTakesOneRecordingForAnotherWithItsNumber) {
  const auto takesOf = [&](const std::string& address) {
    Json beginning = source(1, address);
    beginning["end"] = 8;
    const auto built = build(Json::array({beginning}), pack);
    EXPECT_EQ(built.status, 0) << built.err;
    auto takes = filesIn(pack);
    takes.erase("pack.json");
    return takes;
  };
  const std::string bytes = contentOf(recording);
  const fs::path file = folder.write("my 100% take.wav", bytes.substr(0, 1'000'000));
  const std::string other = "file://" + file.string();
  const auto whole = takesOf(fileURL());
  EXPECT_FALSE(takesOf(other) == whole);
  EXPECT_TRUE(takesOf(fileURL()) == whole);
  folder.write("my 100% take.wav", bytes);
  EXPECT_TRUE(takesOf(other) == whole) << "recorded again";
  std::string escaped = other;
  escaped.replace(escaped.find(' '), 1, "%20");
  for (const std::string& address : {escaped, file.string(), std::string("my 100% take.wav")})
    EXPECT_TRUE(takesOf(address) == whole) << address;
  const auto both = build(Json::array({source(1, fileURL()), source(1, other)}), pack);
  EXPECT_EQ(both.status, 1);
  EXPECT_NE(both.err.find("each recording needs another number"), std::string::npos) << both.err;
}

TEST_F(BuildCommand, DoesWhatSliceShowedBefore) {
  const std::string other = folder.path() / "mine.mka";  // at another rate, and no format of ours
  ASSERT_EQ(std::system(("ffmpeg -loglevel error -i " + recording.string() +
                         " -ar 44100 -c:a flac " + other)
                            .c_str()),
            0);
  Json part = source(1, "mine.mka");
  part["start"] = 5.5;
  part["end"] = 40;
  const Json recipe = {
      {"id", "mine"},      {"name", "Mine"},
      {"kind", "own"},     {"summary", ""},
      {"sources", {part}}, {"options", {{"noReleases", true}, {"bigKeyShare", 0}}}};
  const std::string file = folder.write("recipe.json", recipe.dump());
  const auto sliced = run({"slice", other, "--options", file});
  EXPECT_NE(sliced.err.find("is a whole recipe"), std::string::npos) << sliced.err;
  const std::string report = sliced.out.substr(0, sliced.out.find('\n'));
  const auto built = run({"build", file, "--into", pack / "", "--cache", cache});
  EXPECT_NE(built.out.find("  typing: " + report + "\n"), std::string::npos)
      << sliced.out << built.out;
  EXPECT_NE(built.out.find(" takes to mine/  ("), std::string::npos) << built.out;
  EXPECT_EQ(run({"check", pack}).status, 0);
  const Json groups = Json::parse(contentOf(pack / "pack.json"))["groups"];
  EXPECT_EQ(groups["space"], groups["alpha"]) << "without sounds of wide keys";
  EXPECT_FALSE(groups["alpha"].contains("up"));
  const Json again =
      Json::parse(run({"build", file, "--into", pack, "--cache", cache, "--json"}).out);
  EXPECT_NEAR(again["lufs"].get<double>(), -28, 0.3);
  EXPECT_GT(again["takes"].get<int>(), 12);
}

TEST_F(BuildCommand, FetchesOverHttpAndSaysWhatWentWrongThere) {
  const std::string bytes = contentOf(recording);
  const RawServer good(RawServer::answer("200 OK", bytes, bytes.size()));
  folder.write("mine/pack.json", "the pack before");
  ASSERT_EQ(build(Json::array({source(1, good.url("/typing.wav"))}), pack).status, 0);
  EXPECT_NE(contentOf(pack / "pack.json"), "the pack before");
  const auto before = filesIn(pack);
  fs::remove_all(cache);

  const RawServer missing(RawServer::answer("404 Not Found", "no", 2));
  const RawServer cut(RawServer::answer("200 OK", bytes.substr(0, 5000), bytes.size()));
  const RawServer mute("");
  const RawServer empty(RawServer::answer("200 OK", "", 0));
  const RawServer thief("HTTP/1.1 302 Found\r\nLocation: " + fileURL() +
                        "\r\nContent-Length: 0\r\n\r\n");
  const RawServer huge(RawServer::answer("200 OK", "RIFF", (512u << 20) + 1));
  const RawServer turning("HTTP/1.1 302 Found\r\nLocation: /again\r\nContent-Length: 0\r\n\r\n");
  const std::pair<std::string, const char*> cases[] = {
      {missing.url("/a.ogg"), "the server answered 404"},
      {cut.url("/b.ogg"), ""},
      {mute.url("/c.ogg"), ""},
      {empty.url("/d.ogg"), "it is empty"},
      {thief.url("/e.ogg"), ""},
      {huge.url("/f.ogg"), "larger than 512 MiB"},
      {turning.url("/g.ogg"), "10"},
      {"file:///no/such.ogg", "No such file or directory"},
      {"gopher://127.0.0.1/", ""}};
  for (const auto& [url, why] : cases) {
    const auto failed = build(Json::array({source(1, url)}), pack);
    EXPECT_EQ(failed.status, 1) << url;
    EXPECT_NE(failed.err.find(url), std::string::npos) << failed.err;
    EXPECT_NE(failed.err.find(why), std::string::npos) << failed.err;
    const auto line = failed.err.substr(failed.err.find('\n') + 1);  // after "building Mine"
    EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1) << failed.err;
    EXPECT_TRUE(filesIn(cache).empty()) << url;
    EXPECT_TRUE(filesIn(pack) == before) << url;
  }
}

}  // namespace
}  // namespace tobrin
