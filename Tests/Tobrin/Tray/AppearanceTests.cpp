#include "Tray/Appearance.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QTest>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "Support/ToolkitThreads.h"
#include "Tools/Desktop/PrivateBus.h"

namespace tobrin {
namespace {

/// A desktop portal that knows settings: as variants of numbers, booleans or fractions.
class PortalSettings final {
 public:
  struct Setting {
    const char* space;
    const char* key;
    const char* type;
    double value;
  };

  explicit PortalSettings(std::vector<Setting> known)
      : known_(std::move(known)),
        service_(&sd_bus_open_user, "org.freedesktop.portal.Desktop", path, interface, table, this,
                 [this](sd_bus* bus) { tellChanges(bus); }) {}

  /// Tells everybody, as the portal does.
  void change(const Setting& setting) {
    const std::scoped_lock lock(mutex_);
    changes_.push_back(setting);
  }

 private:
  static constexpr const char* path = "/org/freedesktop/portal/desktop";
  static constexpr const char* interface = "org.freedesktop.portal.Settings";

  static int append(sd_bus_message* message, const Setting& setting) {
    switch (*setting.type) {
      case 'u':
        return sd_bus_message_append(message, "v", "u", static_cast<uint32_t>(setting.value));
      case 'b':
        return sd_bus_message_append(message, "v", "b", static_cast<int>(setting.value));
      default:
        return sd_bus_message_append(message, "v", "d", setting.value);
    }
  }

  /// Wrapped once more than the signal's, as the first version of the interface has it.
  static int read(sd_bus_message* call, void* self, sd_bus_error* error) {
    const char *space = nullptr, *key = nullptr;
    sd_bus_message_read(call, "ss", &space, &key);
    for (const Setting& setting : static_cast<PortalSettings*>(self)->known_) {
      if (std::string(space) != setting.space || std::string(key) != setting.key) continue;
      sd_bus_message* answer = nullptr;
      sd_bus_message_new_method_return(call, &answer);
      sd_bus_message_open_container(answer, 'v', "v");
      append(answer, setting);
      sd_bus_message_close_container(answer);
      const int sent = sd_bus_send(nullptr, answer, nullptr);
      sd_bus_message_unref(answer);
      return sent;
    }
    return sd_bus_error_set(error, "org.freedesktop.portal.Error.NotFound", "no such setting");
  }

  void tellChanges(sd_bus* bus) {
    const std::scoped_lock lock(mutex_);
    for (const Setting& setting : changes_) {
      sd_bus_message* signal = nullptr;
      sd_bus_message_new_signal(bus, &signal, path, interface, "SettingChanged");
      sd_bus_message_append(signal, "ss", setting.space, setting.key);
      append(signal, setting);
      sd_bus_send(bus, signal, nullptr);
      sd_bus_message_unref(signal);
    }
    changes_.clear();
  }

  static constexpr sd_bus_vtable table[] = {
      SD_BUS_VTABLE_START(0),
      SD_BUS_METHOD("Read", "ss", "v", &PortalSettings::read, SD_BUS_VTABLE_UNPRIVILEGED),
      SD_BUS_SIGNAL("SettingChanged", "ssv", 0), SD_BUS_VTABLE_END};

  const std::vector<Setting> known_;
  std::mutex mutex_;
  std::vector<Setting> changes_;
  testing::BusService service_;
};

TEST(Appearance, FollowsThePortalsContrastMotionAndColors) {
  const testing::PrivateBus bus("DBUS_SESSION_BUS_ADDRESS");
  PortalSettings portal({{"org.freedesktop.appearance", "color-scheme", "u", 1},
                         {"org.freedesktop.appearance", "contrast", "u", 1},
                         {"org.gnome.desktop.interface", "enable-animations", "b", 0}});
  int count = 3;
  char name[] = "test", option[] = "-platform", platform[] = "offscreen";
  char* words[] = {name, option, platform, nullptr};
  const QGuiApplication application(count, words);
  const Appearance appearance;
  const auto becomes = [&](bool dark, bool highContrast, bool reducedMotion) {
    return QTest::qWaitFor([&] {
      const Look look = appearance.look();
      return look.dark == dark && look.highContrast == highContrast &&
             look.reducedMotion == reducedMotion;
    });
  };
  EXPECT_TRUE(becomes(true, true, true)) << "as it was before the program";
  portal.change({"org.freedesktop.appearance", "color-scheme", "u", 2});
  EXPECT_TRUE(becomes(false, true, true));
  portal.change({"org.freedesktop.appearance", "contrast", "u", 0});
  EXPECT_TRUE(becomes(false, false, true));
  portal.change({"org.gnome.desktop.a11y.interface", "high-contrast", "b", 1});
  EXPECT_TRUE(becomes(false, true, true));
  portal.change({"org.gnome.desktop.interface", "enable-animations", "b", 1});
  EXPECT_TRUE(becomes(false, true, false));
  portal.change({"org.kde.kdeglobals.KDE", "AnimationDurationFactor", "d", 0});
  EXPECT_TRUE(becomes(false, true, true));
  portal.change({"org.kde.kdeglobals.KDE", "AnimationDurationFactor", "d", 0.5});
  portal.change({"org.freedesktop.appearance", "reduced-motion", "u", 1});
  EXPECT_TRUE(becomes(false, true, true));
}

}  // namespace
}  // namespace tobrin
