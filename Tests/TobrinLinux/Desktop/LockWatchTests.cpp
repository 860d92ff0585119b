#include "Desktop/LockWatch.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <atomic>
#include <memory>

#include "Tools/Desktop/PrivateBus.h"

namespace tobrin {
namespace {

using testing::BusService;
using testing::PrivateBus;

/// What may lock a screen: answers what the test says, and tells everybody once that has changed.
struct FakeLocker {
  std::atomic<int> isLocking{0};
  int told = 0;

  static int answer(sd_bus_message* call, void* self, sd_bus_error*) {
    return sd_bus_reply_method_return(call, "b", static_cast<FakeLocker*>(self)->isLocking.load());
  }
  static int get(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void* self,
                 sd_bus_error*) {
    return sd_bus_message_append(reply, "b", static_cast<FakeLocker*>(self)->isLocking.load());
  }
};

class Locker final {
 public:
  explicit Locker(const char* name, const char* path)
      : service_(&sd_bus_open_user, name, path, name, saver, &fake_, [this, name, path](auto* bus) {
          if (std::exchange(fake_.told, fake_.isLocking) != fake_.isLocking)
            sd_bus_emit_signal(bus, path, name, "ActiveChanged", "b", fake_.told);
        }) {}
  /// The login manager.
  Locker()
      : service_(&sd_bus_open_system, "org.freedesktop.login1",
                 "/org/freedesktop/login1/session/auto", session, login, &fake_, [this](auto* bus) {
                   if (std::exchange(fake_.told, fake_.isLocking) != fake_.isLocking)
                     sd_bus_emit_properties_changed(bus, "/org/freedesktop/login1/session/auto",
                                                    session, "LockedHint", nullptr);
                 }) {}
  void lock(bool locks) { fake_.isLocking = locks; }

 private:
  static constexpr const char* session = "org.freedesktop.login1.Session";
  static constexpr sd_bus_vtable saver[] = {
      SD_BUS_VTABLE_START(0),
      SD_BUS_METHOD("GetActive", "", "b", &FakeLocker::answer, SD_BUS_VTABLE_UNPRIVILEGED),
      SD_BUS_SIGNAL("ActiveChanged", "b", 0), SD_BUS_VTABLE_END};
  static constexpr sd_bus_vtable login[] = {
      SD_BUS_VTABLE_START(0),
      SD_BUS_PROPERTY("LockedHint", "b", &FakeLocker::get, 0, SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE),
      SD_BUS_VTABLE_END};

  FakeLocker fake_;
  BusService service_;
};

TEST(LockWatch, HearsOfTheLoginManagerAndOfScreenSaversThatComeAndGo) {
  const PrivateBus system("DBUS_SYSTEM_BUS_ADDRESS"), user("DBUS_SESSION_BUS_ADDRESS");
  Locker login;
  login.lock(true);
  bool isLocked = false;
  int changes = 0;
  LockWatch watch([&](bool locked) {
    isLocked = locked;
    ++changes;
  });
  const auto becomes = [&](bool wanted) {
    constexpr int patienceMs = 5000, settleMs = 100;
    pollfd wait{watch.descriptor(), POLLIN, 0};
    while (poll(&wait, 1, isLocked == wanted ? settleMs : patienceMs) > 0)
      watch.process();
    return isLocked == wanted && watch.isLocked() == wanted;
  };
  EXPECT_TRUE(becomes(true)) << "locked before it looked";
  login.lock(false);
  EXPECT_TRUE(becomes(false));

  auto saver = std::make_unique<Locker>("org.gnome.ScreenSaver", "/org/gnome/ScreenSaver");
  Locker other("org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver");
  EXPECT_TRUE(becomes(false));
  saver->lock(true);
  EXPECT_TRUE(becomes(true));
  other.lock(true);
  EXPECT_TRUE(becomes(true));
  other.lock(false);
  EXPECT_TRUE(becomes(true)) << "one of two still locks it";
  saver.reset();
  EXPECT_TRUE(becomes(false)) << "its end is the lock's";
  EXPECT_EQ(changes, 4);
}

}  // namespace
}  // namespace tobrin
