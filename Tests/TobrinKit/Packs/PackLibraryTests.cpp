#include <gtest/gtest.h>
#include <unistd.h>

#include <map>

#include "Base/UserFolders.h"
#include "Packs/NameOrder.h"
#include "Packs/PackLibrary.h"
#include "Packs/PackManifest.h"
#include "Support/Failure.h"
#include "Support/InChild.h"
#include "Support/TempFolder.h"

namespace tobrin {
namespace {

/// An environment with its own folders and packs in them.
class PackLibraryFolders : public ::testing::Test {
 protected:
  PackLibraryFolders() {
    variables_["TOBRIN_PACKS"] = (folder_.path() / "bundled").string();
    variables_["XDG_DATA_HOME"] = (folder_.path() / "data").string();
    variables_["LANG"] = "en_US.UTF-8";
  }
  void pack(const std::string& folder, const std::string& id, const std::string& name) const {
    folder_.write(folder + "/pack.json", R"({"formatVersion":1,"id":")" + id + R"(","name":")" +
                                             name + R"(","kind":"k","groups":{}})");
  }
  [[nodiscard]] Environment environment() const {
    return [this](const char* name) {
      const auto found = variables_.find(name);
      return found == variables_.end() ? std::nullopt : std::optional(found->second);
    };
  }
  [[nodiscard]] std::string names() const {
    std::string names;
    for (const PackInfo& info : discoverPacks(environment()))
      names += info.name + (info.isBundled ? "*" : "") + ";";
    return names;
  }
  testing::TempFolder folder_;
  std::map<std::string, std::string> variables_;
};

TEST_F(PackLibraryFolders, ListsBundledPacksFirstAndUserPacksInTheirPlace) {
  EXPECT_EQ(names(), "") << "no folder is no error";
  pack("bundled/1", "a", "Pack 10");
  pack("bundled/2", "b", "pack 2");
  pack("bundled/3", "c", "Beta");
  pack("bundled/.hidden", "d", "hidden");
  pack("bundled/nested/deeper", "e", "nested");
  folder_.write("bundled/broken/pack.json", "{");
  folder_.write("bundled/file", "");
  pack("data/Tobrin/Packs/x", "c", "Zeta");
  pack("data/Tobrin/Packs/y", "f", "alpha");
  EXPECT_EQ(names(), "pack 2*;Pack 10*;alpha;Zeta;");
  pack("data/Tobrin/Packs/z", "f", "again");
  folder_.write("data/Tobrin/Packs/notes/readme", "");
  folder_.write("data/Tobrin/Packs/file", "");
  const auto unusable = findPacks(environment()).unusable;
  ASSERT_EQ(unusable.size(), 1u);
  EXPECT_TRUE(unusable[0].reason.starts_with("No pack.json in ")) << unusable[0].reason;
  EXPECT_EQ(names(), "pack 2*;Pack 10*;again;Zeta;") << "the later folder of one id is kept";
}

TEST_F(PackLibraryFolders, OrdersNamesByTheFirstLocaleThatIsSet) {
  pack("bundled/1", "a", "z");
  pack("bundled/2", "b", "ö");
  EXPECT_EQ(names(), "ö*;z*;");
  variables_["LANG"] = "sv_SE.UTF-8";
  EXPECT_EQ(names(), "z*;ö*;");
  variables_["LC_COLLATE"] = "en_US.UTF-8";
  EXPECT_EQ(names(), "ö*;z*;");
  variables_["LC_ALL"] = "sv_SE.UTF-8";
  EXPECT_EQ(names(), "z*;ö*;");
  variables_["LC_ALL"] = "";
  EXPECT_EQ(names(), "ö*;z*;");
}

TEST_F(PackLibraryFolders, FindsTheUsersFolder) {
  const auto folder = [&] { return userPacksDirectory(environment()).string(); };
  variables_["HOME"] = "/home/me";
  EXPECT_EQ(folder(), variables_["XDG_DATA_HOME"] + "/Tobrin/Packs");
  for (const char* ignored : {"", "relative"}) {
    variables_["XDG_DATA_HOME"] = ignored;
    EXPECT_EQ(folder(), "/home/me/.local/share/Tobrin/Packs");
  }
  EXPECT_EQ(configFolder(environment()), "/home/me/.config");
  EXPECT_EQ(cacheFolder(environment()), "/home/me/.cache");
  variables_["XDG_CONFIG_HOME"] = "/config";
  variables_["XDG_CACHE_HOME"] = "/cache";
  EXPECT_EQ(configFolder(environment()) / cacheFolder(environment()).relative_path(),
            "/config/cache");
  variables_.erase("HOME");
  EXPECT_TRUE(std::filesystem::path(folder()).is_absolute());
}

TEST_F(PackLibraryFolders, FindsTheBundledPacksOfAUserWithoutAHome) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can become such a user";
  pack("bundled/one", "one", "One");
  variables_.erase("XDG_DATA_HOME");
  std::filesystem::permissions(folder_.path(), std::filesystem::perms(0755));
  EXPECT_EQ(testing::inChild([&] {
              constexpr uid_t nobodyKnows = 47'110'815;
              return setuid(nobodyKnows) == 0
                         ? static_cast<int>(discoverPacks(environment()).size())
                         : -1;
            }),
            1);
}

TEST(NameOrder, FollowsTheUsersLanguage) {
  const std::array<const char*, 3> rows[] = {
      {"C", "alpha", "Beta"},     {"POSIX", "Pack 2", "Pack 10"},
      {"nonsense@x.y", "a", "B"}, {"de_DE.UTF-8", "Äpfel", "Birnen"},
      {"sv_SE.UTF-8", "z", "ö"},  {"en_US", "resume", "résumé"},
  };
  for (const auto& [locale, before, after] : rows) {
    EXPECT_TRUE(NameOrder(locale).isBefore(before, after)) << locale << " " << after;
    EXPECT_FALSE(NameOrder(locale).isBefore(after, before)) << locale << " " << after;
  }
}

using testing::TempFolder;

std::string withGroups(const std::string& groups) {
  return R"({"formatVersion":1,"id":"i","name":"n","kind":"k","groups":)" + groups + "}";
}

TEST(PackManifest, DecodesWhatItEncodesAndLeavesOutWhatItDoesNotKnow) {
  PackManifest manifest;
  manifest.formatVersion = INT64_MAX;
  manifest.name = "Größe \"1\"";
  manifest.author = "";
  manifest.groups["space"].down["Loud"] = {"sub/1.wav", "sub/2.wav"};
  manifest.groups["alpha"].up = std::vector<std::string>{};
  manifest.keyTakes[65535] = {{{0, 4294967295}}, {}};
  EXPECT_EQ(PackManifest::fromJson(manifest.toJson()), manifest);

  const std::string text = manifest.toJson();
  EXPECT_NE(text.find("\"sub/1.wav\""), std::string::npos) << "slashes stand as they are";
  EXPECT_EQ(text.find("license"), std::string::npos) << "absent fields are left out";

  const auto other = PackManifest::fromJson(
      R"({"groups":{"other":{"down":{},"up":null,"x":[[{}]]}},"kind":"k","name":"n","id":"i",)"
      R"("formatVersion":-2,"license":null,"comment":1,"comment":2})");
  EXPECT_EQ(other.formatVersion, -2);
  EXPECT_FALSE(other.license || other.groups.at("other").up);
  constexpr std::size_t longest = std::size_t{16} << 20;
  testing::expectRefusals(PackManifest::fromJson,
                          {{"{\"id\":\"\xFF\"}", "not valid JSON"},
                           {std::string(longest, ' '), "not valid JSON"},
                           {std::string(longest + 1, ' '), "longer than 16 MiB"},
                           {R"({"x":)" + std::string(1'000'000, '['), "nested too deeply"}});
}

TEST(PackInfo, TellsMissingFromInvalidManifests) {
  const TempFolder folder;
  const auto failureIn = [&](const char* name) {
    return testing::failureOf([&] { (void)PackInfo::read(folder.path() / name, false); });
  };
  folder.write("good/pack.json", withGroups("{}"));
  folder.write("bad/pack.json", "{}");
  folder.write("file", "");
  std::filesystem::create_directories(folder.path() / "folder/pack.json");
  folder.write("huge/pack.json", "");
  std::filesystem::resize_file(folder.path() / "huge/pack.json", uint64_t{2} << 30);

  EXPECT_EQ(PackInfo::read(folder.path() / "good", true),
            (PackInfo{"i", "n", "k", std::nullopt, folder.path() / "good", true}));
  EXPECT_EQ(failureIn("bad/"), "Invalid pack.json: \"formatVersion\" is missing");
  EXPECT_EQ(failureIn("huge"), "Invalid pack.json: the file is too large");
  for (const char* name : {"absent", "file", "folder"})
    EXPECT_EQ(failureIn(name), "No pack.json in " + (folder.path() / name).string());
}

}  // namespace
}  // namespace tobrin
