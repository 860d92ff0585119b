#include "Front/KWinFrontFeed.h"

#include <gtest/gtest.h>

#include <mutex>
#include <optional>
#include <vector>

#include "Front/FrontThread.h"
#include "Support/Eventually.h"
#include "Tools/Desktop/PrivateBus.h"

namespace tobrin {
namespace {

using namespace std::chrono_literals;

/// What KWin does with a script, and what the script then does.
class FakeKWin {
 public:
  explicit FakeKWin(int howOftenItRefuses = 0) : refusals_(howOftenItRefuses) {}

  void tell(const Front& front) {
    const std::scoped_lock lock(mutex_);
    toTell_.push_back(front);
  }
  /// "+" for a script that was loaded, "!" for started, "-" for taken away.
  std::string calls() {
    const std::scoped_lock lock(mutex_);
    return calls_;
  }

 private:
  template <char letter>
  static int take(sd_bus_message* call, void* self, sd_bus_error*) {
    auto& kwin = *static_cast<FakeKWin*>(self);
    const std::scoped_lock lock(kwin.mutex_);
    kwin.calls_ += letter;
    if (letter == '+') return sd_bus_reply_method_return(call, "i", kwin.refusals_-- > 0 ? -1 : 7);
    return letter == '-' ? sd_bus_reply_method_return(call, "b", 1)
                         : sd_bus_reply_method_return(call, "");
  }

  void report(sd_bus* bus) {
    const std::scoped_lock lock(mutex_);
    for (const Front& front : toTell_)
      sd_bus_call_method_async(bus, nullptr, "app.tobrin.FrontWindow", "/app/tobrin/FrontWindow",
                               "app.tobrin.FrontWindow", "Changed", nullptr, nullptr, "sb",
                               front.app.c_str(), front.fillsScreen ? 1 : 0);
    toTell_.clear();
  }

  static constexpr sd_bus_vtable methods[] = {
      SD_BUS_VTABLE_START(0),
      SD_BUS_METHOD("loadScript", "ss", "i", &take<'+'>, SD_BUS_VTABLE_UNPRIVILEGED),
      SD_BUS_METHOD("unloadScript", "s", "b", &take<'-'>, SD_BUS_VTABLE_UNPRIVILEGED),
      SD_BUS_METHOD("start", "", "", &take<'!'>, SD_BUS_VTABLE_UNPRIVILEGED), SD_BUS_VTABLE_END};

  std::mutex mutex_;
  int refusals_;  // of the script, that are left
  std::string calls_;
  std::vector<Front> toTell_;
  testing::BusService service_{&sd_bus_open_user,
                               "org.kde.KWin",
                               "/Scripting",
                               "org.kde.kwin.Scripting",
                               methods,
                               this,
                               [this](sd_bus* bus) { report(bus); }};
};

TEST(KWinFrontFeed, FollowsWhatTheScriptReportsAndTakesItAway) {
  const testing::PrivateBus bus("DBUS_SESSION_BUS_ADDRESS");
  EXPECT_EQ(KWinFrontFeed("script").descriptor(), -1) << "no KWin";
  std::optional<FakeKWin> kwin(1);
  std::mutex mutex;
  std::vector<Front> told;
  const auto lastIs = [&](const Front& expected) {
    return testing::eventually([&] {
      const std::scoped_lock lock(mutex);
      return !told.empty() && told.back() == expected;
    });
  };
  const auto count = [&] {
    const std::scoped_lock lock(mutex);
    return told.size();
  };
  FrontThread window({[] { return std::make_unique<KWinFrontFeed>("script"); }}, {1ms, 1ms});
  window.start([&](const Front& front) {
    const std::scoped_lock lock(mutex);
    told.push_back(front);
  });
  ASSERT_TRUE(testing::eventually([&] { return kwin->calls() == "-+--+!"; })) << kwin->calls();
  kwin->tell({.app = "editor"});
  kwin->tell({.app = "tobrin"});
  EXPECT_TRUE(lastIs({.app = "tobrin"}));
  EXPECT_EQ(count(), 3U) << "the one before the panel is not passed over";

  sd_bus* stranger = nullptr;
  ASSERT_GE(sd_bus_open_user(&stranger), 0);
  sd_bus_call_method(stranger, "app.tobrin.FrontWindow", "/app/tobrin/FrontWindow",
                     "app.tobrin.FrontWindow", "Changed", nullptr, nullptr, "sb", "false", 1);
  sd_bus_flush_close_unref(stranger);
  kwin.reset();
  EXPECT_TRUE(lastIs({.knowledge = Front::Knowledge::desktopDoesNotTell}));
  EXPECT_EQ(count(), 4U) << "nobody else is believed";
  kwin.emplace(1);
  EXPECT_TRUE(testing::eventually([&] { return kwin->calls() == "-+--+!"; })) << kwin->calls();
  kwin->tell({.app = "editor", .fillsScreen = true});
  EXPECT_TRUE(lastIs({.app = "editor", .fillsScreen = true})) << "it has started again";
  window.stop();
  EXPECT_EQ(kwin->calls(), "-+--+!-");
}

}  // namespace
}  // namespace tobrin
