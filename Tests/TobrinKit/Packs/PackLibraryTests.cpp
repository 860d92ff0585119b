#include "Packs/PackLibrary.h"

#include <gtest/gtest.h>

#include <map>

#include "Packs/NameOrder.h"
#include "Support/TempFolder.h"

namespace tobrin {
namespace {

/// An environment with folders of its own and packs in them.
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
  [[nodiscard]] PackLibrary::Environment environment() const {
    return [this](const char* name) {
      const auto found = variables_.find(name);
      return found == variables_.end() ? std::nullopt : std::optional(found->second);
    };
  }
  [[nodiscard]] std::string names() const {
    std::string names;
    for (const PackInfo& info : PackLibrary::discover(environment()))
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
  EXPECT_EQ(names(), "pack 2*;Pack 10*;again;Zeta;") << "the later folder of one id is kept";
}

TEST_F(PackLibraryFolders, FindsTheUsersFolder) {
  const auto folder = [&] { return PackLibrary::userPacksDirectory(environment()).string(); };
  variables_["HOME"] = "/home/me";
  EXPECT_EQ(folder(), variables_["XDG_DATA_HOME"] + "/Tobrin/Packs");
  for (const char* ignored : {"", "relative"}) {
    variables_["XDG_DATA_HOME"] = ignored;
    EXPECT_EQ(folder(), "/home/me/.local/share/Tobrin/Packs");
  }
  variables_.erase("HOME");
  EXPECT_TRUE(std::filesystem::path(folder()).is_absolute());
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

}  // namespace
}  // namespace tobrin
