#include "Tray/TrayHosts.h"

#include <xcb/xcb.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QGuiApplication>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace tobrin {
namespace {

constexpr const char* service = "org.kde.StatusNotifierWatcher";
constexpr const char* path = "/StatusNotifierWatcher";

template <typename Reply>
using Owned = std::unique_ptr<Reply, decltype(&std::free)>;

}  // namespace

TrayHosts::TrayHosts(QObject* parent)
    : QObject(parent),
      watcher_(service, QDBusConnection::sessionBus(), QDBusServiceWatcher::WatchForRegistration) {
  connect(&watcher_, &QDBusServiceWatcher::serviceRegistered, this, &TrayHosts::ask);
  QDBusConnection::sessionBus().connect(service, path, service, "StatusNotifierHostRegistered",
                                        this, SLOT(ask()));
  ask();
}

void TrayHosts::ask() {
  auto question =
      QDBusMessage::createMethodCall(service, path, "org.freedesktop.DBus.Properties", "Get");
  question << service << "IsStatusNotifierHostRegistered";
  auto* answer =
      new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
    const QDBusPendingReply<QDBusVariant> reply = *answer;
    if (!reply.isError() && reply.value().variant().toBool()) emit appeared();
    answer->deleteLater();
  });
}

bool TrayHosts::hasEmbeddingTray() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  xcb_connection_t* server = x11 != nullptr ? x11->connection() : nullptr;
  if (server == nullptr) return false;
  constexpr const char* name = "_NET_SYSTEM_TRAY_S0";
  const auto asked = xcb_intern_atom(server, 0, static_cast<uint16_t>(std::strlen(name)), name);
  const Owned<xcb_intern_atom_reply_t> atom(xcb_intern_atom_reply(server, asked, nullptr),
                                            std::free);
  if (atom == nullptr) return false;
  const auto wanted = xcb_get_selection_owner(server, atom->atom);
  const Owned<xcb_get_selection_owner_reply_t> owner(
      xcb_get_selection_owner_reply(server, wanted, nullptr), std::free);
  return owner != nullptr && owner->owner != XCB_NONE;
}

}  // namespace tobrin
