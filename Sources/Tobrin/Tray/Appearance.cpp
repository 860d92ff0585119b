#include "Tray/Appearance.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

namespace tobrin {
namespace {

constexpr const char* service = "org.freedesktop.portal.Desktop";
constexpr const char* path = "/org/freedesktop/portal/desktop";
constexpr const char* interface = "org.freedesktop.portal.Settings";

struct Setting {
  const char* space;
  const char* key;
};
constexpr Setting colorScheme = {"org.freedesktop.appearance", "color-scheme"};
constexpr Setting contrast = {"org.freedesktop.appearance", "contrast"};
constexpr Setting lessMotion = {"org.freedesktop.appearance", "reduced-motion"};
// Of desktops that have no common name for it yet.
constexpr Setting gnomeContrast = {"org.gnome.desktop.a11y.interface", "high-contrast"};
constexpr Setting gnomeAnimations = {"org.gnome.desktop.interface", "enable-animations"};
constexpr Setting plasmaAnimations = {"org.kde.kdeglobals.KDE", "AnimationDurationFactor"};
constexpr Setting all[] = {colorScheme,   contrast,        lessMotion,
                           gnomeContrast, gnomeAnimations, plasmaAnimations};

QString nameOf(const QString& space, const QString& key) {
  return space + ' ' + key;
}

QString nameOf(const Setting& setting) {
  return nameOf(setting.space, setting.key);
}

/// Answers come wrapped in one or two variants, by the portal's age.
QVariant unwrapped(QVariant value) {
  while (value.userType() == qMetaTypeId<QDBusVariant>()) {
    value = value.value<QDBusVariant>().variant();
  }
  return value;
}

}  // namespace

Appearance::Appearance(QObject* parent) : QObject(parent) {
  QDBusConnection::sessionBus().connect(service, path, interface, "SettingChanged", this,
                                        SLOT(portalChanged(const QDBusMessage&)));
  qGuiApp->installEventFilter(this);
  for (const Setting& setting : all)
    ask(setting.space, setting.key);
}

void Appearance::ask(const QString& space, const QString& key) {
  auto question = QDBusMessage::createMethodCall(service, path, interface, "Read");
  question << space << key;
  auto* answer =
      new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, space, key] {
    const QDBusPendingReply<QDBusVariant> reply = *answer;
    if (!reply.isError()) take(nameOf(space, key), QVariant::fromValue(reply.value()));
    answer->deleteLater();
  });
}

bool Appearance::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::ApplicationPaletteChange) emit changed();
  return QObject::eventFilter(watched, event);
}

/// The whole message: Qt refuses to connect a slot that takes a variant as its parameter.
void Appearance::portalChanged(const QDBusMessage& signal) {
  const QVariantList words = signal.arguments();
  if (words.size() != 3) return;
  for (const Setting& setting : all)
    if (words[0] == setting.space && words[1] == setting.key) take(nameOf(setting), words[2]);
}

void Appearance::take(const QString& setting, const QVariant& value) {
  settings_[setting] = unwrapped(value);
  emit changed();
}

bool Appearance::isDark() const {
  constexpr uint preferDark = 1;
  constexpr uint preferLight = 2;
  const uint wish = settings_.value(nameOf(colorScheme)).toUInt();
  if (wish == preferDark || wish == preferLight) return wish == preferDark;
  const QPalette palette = QGuiApplication::palette();
  return palette.color(QPalette::Window).lightness() <
         palette.color(QPalette::WindowText).lightness();
}

Look Appearance::look() const {
  const auto is = [this](const Setting& setting) {
    return settings_.value(nameOf(setting)).toUInt() != 0;
  };
  const auto isOff = [this](const Setting& setting) {
    const QVariant value = settings_.value(nameOf(setting));
    return value.isValid() && value.toDouble() == 0;
  };
  return {.dark = isDark(),
          .highContrast = is(contrast) || is(gnomeContrast),
          .reducedMotion = is(lessMotion) || isOff(gnomeAnimations) || isOff(plasmaAnimations)};
}

}  // namespace tobrin
