#include "Desktop/SessionKind.h"

#include <gtest/gtest.h>

#include <map>
#include <tuple>

#include "Desktop/SessionKeys.h"
#include "Tools/Desktop/PrivateXServer.h"

namespace tobrin {
namespace {

TEST(MakeKeySource, TheKindOfSessionDecidesNotTheDisplayVariable) {
  const testing::PrivateXServer server;
  const std::string display = server.display();
  const std::tuple<const char*, const char*, std::string, bool> rows[] = {
      // kind of session, wish, display, whether the X server is heard
      {"x11", "", ":99", true},         {"x11", "", "", false},
      {"wayland", "", display, false},  {"tty", "", display, true},
      {"", "", ":987", false},          {"tty", "", "", false},
      {"x11", "evdev", display, false}, {"wayland", "x11", display, true},
  };
  for (const auto& [kind, wish, place, hearsX] : rows) {
    const std::map<std::string, std::string> values = {
        {"XDG_SESSION_TYPE", kind}, {"TOBRIN_KEYS", wish}, {"DISPLAY", place}};
    const auto source = makeKeySource([&](const char* name) {
      const auto found = values.find(name);
      return found == values.end() ? "" : found->second;
    });
    EXPECT_EQ(source->description().starts_with("X server"), hearsX) << kind << wish << place;
  }
}

}  // namespace
}  // namespace tobrin
