#include "Desktop/SessionKind.h"

#include <gtest/gtest.h>

#include <map>

#include "Desktop/MakeKeySource.h"
#include "Support/PrivateXServer.h"

namespace tobrin {
namespace {

Environment environmentOf(std::map<std::string, std::string> values) {
  return [values = std::move(values)](const char* name) {
    const auto found = values.find(name);
    return found == values.end() ? "" : found->second;
  };
}

TEST(MakeKeySource, TheKindOfSessionDecidesNotTheDisplayVariable) {
  const testing::PrivateXServer server;
  const std::string display = server.display();
  const struct {
    const char* label;
    std::map<std::string, std::string> environment;
    bool hearsX;
  } rows[] = {
      {"X11 session", {{"XDG_SESSION_TYPE", "x11"}, {"DISPLAY", ":99"}}, true},
      {"X11 session without a display", {{"XDG_SESSION_TYPE", "x11"}}, false},
      {"Wayland session", {{"XDG_SESSION_TYPE", "wayland"}, {"DISPLAY", display}}, false},
      {"compositor started by hand",
       {{"XDG_SESSION_TYPE", "tty"}, {"WAYLAND_DISPLAY", "wayland-0"}, {"DISPLAY", display}},
       false},
      {"X server started by hand", {{"XDG_SESSION_TYPE", "tty"}, {"DISPLAY", display}}, true},
      {"a display nobody serves", {{"DISPLAY", ":987"}}, false},
      {"console", {{"XDG_SESSION_TYPE", "tty"}}, false},
      {"wish for the devices",
       {{"TOBRIN_KEYS", "evdev"}, {"XDG_SESSION_TYPE", "x11"}, {"DISPLAY", display}},
       false},
      {"wish for the server",
       {{"TOBRIN_KEYS", "x11"}, {"XDG_SESSION_TYPE", "wayland"}, {"DISPLAY", display}},
       true},
  };
  for (const auto& row : rows) {
    const auto source = makeKeySource(environmentOf(row.environment));
    EXPECT_EQ(source->description().starts_with("X server"), row.hearsX) << row.label;
  }
}

}  // namespace
}  // namespace tobrin
