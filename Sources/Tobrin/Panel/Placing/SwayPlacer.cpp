#include "Panel/Placing/SwayPlacer.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMargins>
#include <QRect>
#include <chrono>
#include <cstring>
#include <optional>

#include "Panel/Placing/BesideAnchor.h"

namespace tobrin {
namespace {

using namespace std::chrono_literals;

constexpr auto patience = 3s;

/// Each message: this, then length of the payload and type in the machine's own byte order.
constexpr QByteArrayView magic = "i3-ipc";
constexpr qsizetype headerBytes = magic.size() + 2 * qsizetype{sizeof(quint32)};

QByteArrayView bytesOf(const quint32& number) {
  return {reinterpret_cast<const char*>(&number), sizeof number};
}

quint32 numberAt(const QByteArray& bytes, qsizetype place) {
  quint32 number = 0;
  std::memcpy(&number, bytes.constData() + place, sizeof number);
  return number;
}

QRect rectOf(const QJsonObject& node) {
  const QJsonObject rect = node["rect"].toObject();
  return {rect["x"].toInt(), rect["y"].toInt(), rect["width"].toInt(), rect["height"].toInt()};
}

struct Placed {
  QRect window;
  QRect room;  // of its workspace: the screen without the bars
};

/// Nothing where the window has gone, or where it is a tile among others.
std::optional<Placed> findFloating(qint64 id, const QJsonObject& node, QRect room = {}) {
  if (node["type"] == "workspace") room = rectOf(node);
  if (node["id"].toInteger() == id) {
    if (node["type"] != "floating_con") return {};
    return Placed{rectOf(node), room};
  }
  for (const char* const kind : {"nodes", "floating_nodes"}) {
    for (const QJsonValue each : node[kind].toArray())
      if (const auto found = findFloating(id, each.toObject(), room)) return found;
  }
  return {};
}

/// For a window that lies on the pointer, or at the edge of the screen that is nearest to that.
QPoint besideTray(const Placed& placed) {
  const QPoint middle = placed.window.center();
  const bool isHigh = middle.y() < placed.room.center().y();
  const QPoint anchor(middle.x(), isHigh ? placed.window.top() : placed.window.bottom());
  constexpr QMargins edges(screenEdge, screenEdge, screenEdge, screenEdge);
  return besideAnchor(anchor, placed.window.size(), placed.room.marginsRemoved(edges));
}

QByteArray commandFor(qint64 window, const QByteArray& command) {
  return "[con_id=" + QByteArray::number(window) + "] " + command;
}

}  // namespace

bool SwayPlacer::isOfThisSession(const QString& socket, const QString& desktops) {
  return QFileInfo::exists(socket) && !desktops.split(':').contains("KDE");
}

SwayPlacer::SwayPlacer(QString socket) : path_(std::move(socket)) {
  patience_.setSingleShot(true);
  patience_.setInterval(patience);
  patience_.callOnTimeout(&socket_, &QLocalSocket::abort);
  connect(&socket_, &QLocalSocket::connected, this, [this] { send(subscribe, R"(["window"])"); });
  connect(&socket_, &QLocalSocket::readyRead, this, &SwayPlacer::receive);
}

void SwayPlacer::placeNext() {
  socket_.abort();
  received_.clear();
  window_ = 0;
  isPlaced_ = false;
  socket_.connectToServer(path_);
  patience_.start();
}

void SwayPlacer::send(Message type, const QByteArray& payload) {
  QByteArray message;
  message.append(magic).append(bytesOf(static_cast<quint32>(payload.size())));
  socket_.write(message.append(bytesOf(type)).append(payload));
  socket_.flush();
}

void SwayPlacer::receive() {
  received_ += socket_.readAll();
  while (received_.size() >= headerBytes) {
    const qsizetype length = numberAt(received_, magic.size());
    if (received_.size() < headerBytes + length) return;
    const quint32 type = numberAt(received_, magic.size() + qsizetype{sizeof(quint32)});
    const QByteArray payload = received_.sliced(headerBytes, length);
    received_.remove(0, headerBytes + length);
    take(type, payload);
  }
}

void SwayPlacer::take(quint32 type, const QByteArray& payload) {
  const QJsonObject content = QJsonDocument::fromJson(payload).object();
  if (type == windowEvent) windowChanged(content);
  if (type == getTree) treeCame(content);
  // sway does not carry out what it has not read when the connection is closed.
  if (type == runCommand && isPlaced_) hangUp();
}

/// sway says where the pointer is only by moving a window there.
void SwayPlacer::windowChanged(const QJsonObject& event) {
  const QJsonObject window = event["container"].toObject();
  const bool isOurs = window["pid"].toInteger() == QCoreApplication::applicationPid();
  if (event["change"] != "new" || !isOurs || window_ != 0) return;
  window_ = window["id"].toInteger();
  send(runCommand, commandFor(window_, "move position pointer"));
  send(getTree);
}

void SwayPlacer::treeCame(const QJsonObject& root) {
  const auto found = findFloating(window_, root);
  if (!found) return hangUp();
  isPlaced_ = true;
  const QPoint to = besideTray(*found);
  send(runCommand, commandFor(window_, "move absolute position " + QByteArray::number(to.x()) +
                                           " px " + QByteArray::number(to.y()) + " px"));
}

void SwayPlacer::hangUp() {
  patience_.stop();
  socket_.disconnectFromServer();
}

}  // namespace tobrin
