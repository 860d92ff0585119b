#include <gtest/gtest.h>

#include "Desktop/XdgAutostart.h"
#include "Support/TempFolder.h"

namespace tobrin {
namespace {

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
  EXPECT_NE(text.find("\nTryExec=/opt/a b/$x\"\\\\50%/tobrin\n"), std::string::npos) << text;
  EXPECT_EQ(login.setEnabled(false), "");
  EXPECT_FALSE(std::filesystem::exists(folder.path() / entry));
}

TEST(XdgAutostart, BelievesTheDesktopsOwnSwitches) {
  const testing::TempFolder folder;
  XdgAutostart login(folder.path(), "/usr/bin/tobrin");
  folder.write(entry, "[Desktop Entry]\nExec=tobrin\n");
  EXPECT_TRUE(login.isEnabled());
  for (const char* off : {"[Desktop Entry]\nExec=tobrin\nHidden=true\n", "[Desktop Entry]\n", "",
                          "[Desktop Entry]\nX-GNOME-Autostart-enabled=false\nExec=tobrin\n"}) {
    folder.write(entry, off);
    EXPECT_FALSE(login.isEnabled()) << off;
  }
  EXPECT_EQ(login.setEnabled(true), "");
  EXPECT_TRUE(login.isEnabled()) << "replaces what was switched off";
  folder.write("file", "in the way");
  EXPECT_NE(XdgAutostart(folder.path() / "file", "tobrin").setEnabled(true), "") << "says why";
}

}  // namespace
}  // namespace tobrin
