/// sway: it moves windows for those who ask over its socket. Thread: main.
#pragma once

#include <QJsonObject>
#include <QLocalSocket>
#include <QTimer>

#include "Panel/Placing/WindowPlacer.h"

namespace tobrin {

class SwayPlacer final : public QObject, public WindowPlacer {
 public:
  /// Whether it is sway that runs this session: the environment of a user who has several sessions,
  /// or had them, may name the socket of another one. `desktops` are those of XDG_CURRENT_DESKTOP.
  static bool isOfThisSession(const QString& socket, const QString& desktops);

  explicit SwayPlacer(QString socket);

  void placeNext() override;

 private:
  enum Message : quint32 { runCommand = 0, subscribe = 2, getTree = 4, windowEvent = 0x8000'0003 };

  void send(Message type, const QByteArray& payload = {});
  void receive();
  void take(quint32 type, const QByteArray& payload);
  void windowChanged(const QJsonObject& event);
  void treeCame(const QJsonObject& root);
  void hangUp();

  const QString path_;
  QLocalSocket socket_;  // connected while a window is waited for
  QByteArray received_;  // what is not yet a whole message
  QTimer patience_;
  qint64 window_ = 0;      // sway's number for ours, once it has appeared
  bool isPlaced_ = false;  // all has been asked for
};

}  // namespace tobrin
