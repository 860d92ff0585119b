// The program's place in the user's session: started with it, and once only.
#include <gtest/gtest.h>

#include "Desktop/SingleInstance.h"
#include "Desktop/XdgAutostart.h"
#include "Support/TempFolder.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

constexpr const char* entry = "autostart/app.tobrin.Tobrin.desktop";

TEST(XdgAutostart, SwitchesAnEntryOnAndOff) {
  const testing::TempFolder folder;
  XdgAutostart login(folder.path(), R"(/opt/a b/$x"\50%/tobrin)");
  EXPECT_FALSE(login.isEnabled());
  EXPECT_EQ(login.setEnabled(false), "") << "off is off";
  EXPECT_EQ(login.setEnabled(true), "");
  EXPECT_TRUE(login.isEnabled());
  std::ifstream file(folder.path() / entry);
  const std::string text(std::istreambuf_iterator<char>(file), {});
  // The backslashes count double: the entry's text is unescaped first, its command line then.
  EXPECT_NE(text.find("\nExec=\"/opt/a b/\\\\$x\\\\\"\\\\\\\\50%%/tobrin\"\n"), std::string::npos)
      << text;
  EXPECT_EQ(login.setEnabled(false), "");
  EXPECT_FALSE(login.isEnabled());
  EXPECT_FALSE(fs::exists(folder.path() / entry));
}

TEST(XdgAutostart, BelievesTheDesktopsOwnSwitches) {
  struct Row {
    const char* label;
    const char* text;
    bool enabled;
  };
  const Row rows[] = {
      {"plain", "[Desktop Entry]\nExec=tobrin\n", true},
      {"hidden", "[Desktop Entry]\nExec=tobrin\nHidden=true\n", false},
      {"switched off", "[Desktop Entry]\nX-GNOME-Autostart-enabled=false\nExec=tobrin\n", false},
      {"starts nothing", "[Desktop Entry]\n", false},
      {"empty", "", false},
  };
  const testing::TempFolder folder;
  XdgAutostart login(folder.path(), "/usr/bin/tobrin");
  for (const Row& row : rows) {
    folder.write(entry, row.text);
    EXPECT_EQ(login.isEnabled(), row.enabled) << row.label;
  }
  EXPECT_EQ(login.setEnabled(true), "");
  EXPECT_TRUE(login.isEnabled()) << "replaces what was switched off";
}

TEST(XdgAutostart, SaysWhyItCannot) {
  const testing::TempFolder folder;
  folder.write("autostart", "in the way");
  XdgAutostart login(folder.path(), "/usr/bin/tobrin");
  EXPECT_NE(login.setEnabled(true).find("autostart"), std::string::npos);
  EXPECT_FALSE(login.isEnabled());
}

TEST(SingleInstance, TheSecondAsksTheFirst) {
  const testing::TempFolder folder;
  folder.write("tobrin.socket", "left by a crash");
  auto first = std::make_unique<SingleInstance>(folder.path());
  EXPECT_TRUE(first->isFirst());
  EXPECT_GE(first->listeningSocket(), 0);
  EXPECT_FALSE(first->takeShowRequests());
  {
    const SingleInstance second(folder.path());
    EXPECT_FALSE(second.isFirst());
    EXPECT_TRUE(second.askFirstToShow());
    EXPECT_TRUE(second.askFirstToShow());
  }
  EXPECT_TRUE(first->takeShowRequests()) << "kept though the second has gone";
  EXPECT_FALSE(first->takeShowRequests()) << "all taken at once";
  const SingleInstance third(folder.path());
  first.reset();
  EXPECT_FALSE(third.askFirstToShow());
  EXPECT_TRUE(SingleInstance(folder.path()).isFirst()) << "the lock is free again";
}

TEST(SingleInstance, EveryoneIsFirstWhereThereIsNoPlace) {
  for (const int round : {1, 2}) {
    const SingleInstance instance{fs::path()};
    EXPECT_TRUE(instance.isFirst()) << round;
    EXPECT_EQ(instance.listeningSocket(), -1);
  }
  const testing::TempFolder folder;
  const SingleInstance missing(folder.path() / "gone");
  EXPECT_TRUE(missing.isFirst());
}

}  // namespace
}  // namespace tobrin
