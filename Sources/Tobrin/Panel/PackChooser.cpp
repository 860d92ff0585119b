#include "Panel/PackChooser.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingReply>

#include "Base/Log.h"

namespace tobrin {

/// What a file chooser is to show: patterns (kind 0), under one name.
struct FilePattern {
  uint kind = 0;
  QString pattern;
};
struct FileFilter {
  QString name;
  QList<FilePattern> patterns;
};

static QDBusArgument& operator<<(QDBusArgument& out, const FilePattern& pattern) {
  out.beginStructure();
  out << pattern.kind << pattern.pattern;
  out.endStructure();
  return out;
}
static const QDBusArgument& operator>>(const QDBusArgument& in, FilePattern& pattern) {
  in.beginStructure();
  in >> pattern.kind >> pattern.pattern;
  in.endStructure();
  return in;
}
static QDBusArgument& operator<<(QDBusArgument& out, const FileFilter& filter) {
  out.beginStructure();
  out << filter.name << filter.patterns;
  out.endStructure();
  return out;
}
static const QDBusArgument& operator>>(const QDBusArgument& in, FileFilter& filter) {
  in.beginStructure();
  in >> filter.name >> filter.patterns;
  in.endStructure();
  return in;
}

namespace {

constexpr const char* portal = "org.freedesktop.portal.Desktop";
constexpr const char* portalPath = "/org/freedesktop/portal/desktop";
constexpr const char* chooser = "org.freedesktop.portal.FileChooser";
constexpr const char* requests = "org.freedesktop.portal.Request";
constexpr const char* token = "tobrinAddPack";

FileFilter filter(const QString& name, const QStringList& patterns) {
  FileFilter result{name, {}};
  for (const QString& each : patterns)
    result.patterns.append({0, each});
  return result;
}

/// Descriptions stand for their folders.
QList<FileFilter> filters() {
  const QStringList packs{"*.tobrinpack", "*.zip",     "*.7z",        "*.tar",       "*.tar.*",
                          "*.tgz",        "pack.json", "config.json", "profile.yaml"};
  return {filter(PackChooser::tr("Sound packs"), packs),
          filter(PackChooser::tr("All files"), {"*"})};
}

/// The object that will answer: listened to before the question is sent, no answer is missed.
QString expectedRequest() {
  QString sender = QDBusConnection::sessionBus().baseService().mid(1);
  return QString("%1/request/%2/%3").arg(portalPath, sender.replace('.', '_'), token);
}

}  // namespace

PackChooser::~PackChooser() {
  if (request_.isEmpty()) return;
  QDBusConnection::sessionBus().send(
      QDBusMessage::createMethodCall(portal, request_, requests, "Close"));
}

void PackChooser::ask(const QString& parentWindow) {
  if (!request_.isEmpty()) return;
  qDBusRegisterMetaType<FilePattern>();
  qDBusRegisterMetaType<QList<FilePattern>>();
  qDBusRegisterMetaType<FileFilter>();
  qDBusRegisterMetaType<QList<FileFilter>>();
  auto call = QDBusMessage::createMethodCall(portal, portalPath, chooser, "OpenFile");
  const QVariantMap options{{"handle_token", token},
                            {"multiple", true},
                            {"accept_label", tr("Add")},
                            {"filters", QVariant::fromValue(filters())}};
  call << parentWindow << tr("Add packs") << options;
  listen(expectedRequest());
  const auto* const reply =
      new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
  connect(reply, &QDBusPendingCallWatcher::finished, this, &PackChooser::sent);
}

void PackChooser::listen(const QString& request) {
  request_ = request;
  QDBusConnection::sessionBus().connect(portal, request, requests, "Response", this,
                                        SLOT(answered(uint, QVariantMap)));
}

void PackChooser::sent(QDBusPendingCallWatcher* call) {
  call->deleteLater();
  const QDBusPendingReply<QDBusObjectPath> reply = *call;
  if (reply.isError()) {
    logLine("no file chooser: " + reply.error().message().toStdString());
    end();
    emit failed();
  } else if (!request_.isEmpty() && reply.value().path() != request_) {  // as old portals do
    end();
    listen(reply.value().path());
  }
}

void PackChooser::answered(uint response, const QVariantMap& results) {
  constexpr uint given = 0;
  constexpr uint dismissed = 1;
  end();
  if (response > dismissed) return emit failed();
  const QStringList places = response == given ? results["uris"].toStringList() : QStringList();
  emit chosen(QUrl::fromStringList(places));
}

void PackChooser::end() {
  QDBusConnection::sessionBus().disconnect(portal, request_, requests, "Response", this,
                                           SLOT(answered(uint, QVariantMap)));
  request_.clear();
}

}  // namespace tobrin
