#include <gtest/gtest.h>

#include "Desktop/JsonSettingsStore.h"
#include "Desktop/XdgAutostart.h"
#include "Support/TempFolder.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

constexpr const char* entry = "autostart/app.tobrin.Tobrin.desktop";

TEST(XdgAutostart, SwitchesAnEntryAndBelievesTheDesktopsOwnSwitches) {
  const testing::TempFolder folder;
  const fs::path program = folder.write(R"(a b/$x"\50%/tobrin)", "");
  fs::permissions(program, fs::perms::owner_all);
  XdgAutostart login(folder.path(), program);
  EXPECT_FALSE(login.isEnabled());
  EXPECT_EQ(login.setEnabled(false), "") << "off is off";
  EXPECT_EQ(login.setEnabled(true), "");
  const std::string text = testing::contentOf(folder.path() / entry);
  // The backslashes count double: the entry's text is unescaped first, its command line then.
  EXPECT_NE(text.find("\nExec=\"" + folder.path().string() +
                      "/a b/\\\\$x\\\\\"\\\\\\\\50%%/tobrin\" --at-login\n"),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("\nTryExec=" + folder.path().string() + "/a b/$x\"\\\\50%/tobrin\n"),
            std::string::npos)
      << text;
  EXPECT_EQ(login.setEnabled(false), "");
  EXPECT_FALSE(std::filesystem::exists(folder.path() / entry));

  folder.write(entry, "[Desktop Entry]\nExec=tobrin\n");
  EXPECT_TRUE(login.isEnabled());
  for (const char* off : {"[Desktop Entry]\nExec=tobrin\nHidden=true\n", "[Desktop Entry]\n", "",
                          "[Desktop Entry]\nX-GNOME-Autostart-enabled=false\nExec=tobrin\n"}) {
    folder.write(entry, off);
    EXPECT_FALSE(login.isEnabled()) << off;
  }
  EXPECT_EQ(login.setEnabled(true), "");
  EXPECT_TRUE(login.isEnabled()) << "replaces what was switched off";
  fs::remove(program);
  EXPECT_FALSE(login.isEnabled()) << "desktops start what is gone no more";
  folder.write("file", "in the way");
  EXPECT_NE(XdgAutostart(folder.path() / "file", "tobrin").setEnabled(true), "") << "says why";
}

TEST(JsonSettingsStore, KeepsChoicesWhatItDoesNotKnowAndABrokenFileAside) {
  const testing::TempFolder folder;
  const fs::path file = folder.path() / "Tobrin" / "settings.json";
  EXPECT_TRUE(JsonSettingsStore(file).writeText("pack", "a \"ü\"")) << "makes its folder";
  folder.write("Tobrin/settings.json", R"({"later": {"version": [1, 2]}, "pack": "old"})");
  JsonSettingsStore store(file);
  EXPECT_EQ(store.readText("pack"), "old");
  EXPECT_EQ(store.readText("later"), std::nullopt);
  EXPECT_TRUE(store.write("engine", R"({"volume": 0.5})"));
  EXPECT_TRUE(store.writeText("pack", "a \"ü\""));

  const JsonSettingsStore reread(file);
  EXPECT_EQ(reread.read("later"), R"({"version":[1,2]})");
  EXPECT_EQ(reread.read("engine"), R"({"volume":0.5})");
  EXPECT_EQ(reread.readText("pack"), "a \"ü\"");
  EXPECT_EQ(std::distance(fs::directory_iterator(file.parent_path()), {}), 1) << "nothing else";

  std::string aside = file.string() + ".broken";
  int kept = 1;
  const std::string deep = "{\"a\": " + std::string(100'000, '[') + std::string(100'000, ']') + "}";
  for (const std::string& broken : {std::string("{\"engine\": "), std::string(), std::string("[1]"),
                                    std::string("{\"a\": \"\xff\"}"), deep}) {
    SCOPED_TRACE(broken.substr(0, 20));
    folder.write("Tobrin/settings.json", broken);
    JsonSettingsStore fresh(file);
    EXPECT_EQ(fresh.read("engine"), std::nullopt);
    EXPECT_TRUE(fresh.writeText("pack", "new"));
    EXPECT_EQ(testing::contentOf(aside), broken);
    EXPECT_EQ(JsonSettingsStore(file).readText("pack"), "new");
    aside = file.string() + ".broken." + std::to_string(++kept);
  }
  JsonSettingsStore odd(file);
  EXPECT_TRUE(odd.write("engine", "17"));
  odd.keepAside("engine");
  EXPECT_EQ(JsonSettingsStore(aside).read("engine"), "17");
  EXPECT_EQ(JsonSettingsStore(file).read("engine"), std::nullopt)
      << "put aside once, not each time";
  EXPECT_EQ(JsonSettingsStore(file).readText("pack"), "new");
}

}  // namespace
}  // namespace tobrin
