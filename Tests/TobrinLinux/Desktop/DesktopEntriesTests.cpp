#include "Desktop/DesktopEntries.h"

#include <gtest/gtest.h>

#include <map>

#include "Support/TempFolder.h"

namespace tobrin {
namespace {

TEST(DesktopEntries, TellNameAndPictureOfWhoseWindowItIs) {
  const testing::TempFolder folder;
  folder.write("mine/applications/web.desktop",
               "Name=Not this\n[Desktop Entry]\nName=Web\nName[de]=Netz\nName[de_DE]=Weltnetz\n"
               "Name[fr]=Toile\nIcon=globe\n[Desktop Action New]\nName=New\n");
  folder.write("all/applications/web.desktop", "[Desktop Entry]\nName=Everybody's\n");
  folder.write("all/applications/org.example.Draw.desktop", "[Desktop Entry]\nName=Draw\n");
  folder.write("all/applications/odd.desktop",
               "[Desktop Entry]\nName=Odd\nStartupWMClass=Very Odd\n");
  std::map<std::string, std::string> variables = {
      {"XDG_DATA_HOME", folder.path() / "mine"},
      {"XDG_DATA_DIRS", "relative:" + (folder.path() / "all").string()},
      {"LANG", "de_DE.UTF-8"}};
  const auto describe = [&](const std::string& id) {
    const AppDescription found = describeApp(id, [&](const char* name) {
      const auto variable = variables.find(name);
      return variable == variables.end() ? std::nullopt : std::optional(variable->second);
    });
    return found.name + ", " + found.icon;
  };
  EXPECT_EQ(describe("Web"), "Weltnetz, globe");
  EXPECT_EQ(describe("org.example.Draw"), "Draw, ");
  EXPECT_EQ(describe("draw"), "Draw, ");
  EXPECT_EQ(describe("very odd"), "Odd, ");
  for (const char* unknown : {"nothing", "", "../applications/odd"})
    EXPECT_EQ(describe(unknown), std::string(unknown) + ", ");
  variables["LC_ALL"] = "de_AT";
  EXPECT_EQ(describe("Web"), "Netz, globe");
  variables["LC_ALL"] = "C";
  EXPECT_EQ(describe("Web"), "Web, globe");
}

}  // namespace
}  // namespace tobrin
