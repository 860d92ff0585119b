#include "Tray/ColorScheme.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

namespace tobrin {
namespace {

constexpr const char* service = "org.freedesktop.portal.Desktop";
constexpr const char* path = "/org/freedesktop/portal/desktop";
constexpr const char* interface = "org.freedesktop.portal.Settings";
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString colorScheme = QStringLiteral("color-scheme");

/// Answers come wrapped in one or two variants, by the portal's age.
QVariant unwrapped(QVariant value) {
  while (value.userType() == qMetaTypeId<QDBusVariant>()) {
    value = value.value<QDBusVariant>().variant();
  }
  return value;
}

}  // namespace

ColorScheme::ColorScheme(QObject* parent) : QObject(parent) {
  QDBusConnection::sessionBus().connect(
      service, path, interface, "SettingChanged", this,
      SLOT(portalChanged(const QString&, const QString&, const QDBusVariant&)));
  qGuiApp->installEventFilter(this);
  askPortal();
}

void ColorScheme::askPortal() {
  auto question = QDBusMessage::createMethodCall(service, path, interface, "Read");
  question << appearance << colorScheme;
  auto* answer =
      new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
    const QDBusPendingReply<QDBusVariant> reply = *answer;
    if (!reply.isError()) take(QVariant::fromValue(reply.value()));
    answer->deleteLater();
  });
}

bool ColorScheme::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::ApplicationPaletteChange) emit changed();
  return QObject::eventFilter(watched, event);
}

void ColorScheme::portalChanged(const QString& space, const QString& key,
                                const QDBusVariant& value) {
  if (space == appearance && key == colorScheme) take(QVariant::fromValue(value));
}

void ColorScheme::take(const QVariant& value) {
  constexpr uint preferDark = 1;
  constexpr uint preferLight = 2;
  const uint number = unwrapped(value).toUInt();
  wish_ = number == preferDark ? Wish::dark : number == preferLight ? Wish::light : Wish::none;
  emit changed();
}

bool ColorScheme::isDark() const {
  if (wish_ != Wish::none) return wish_ == Wish::dark;
  const QPalette palette = QGuiApplication::palette();
  return palette.color(QPalette::Window).lightness() <
         palette.color(QPalette::WindowText).lightness();
}

}  // namespace tobrin
