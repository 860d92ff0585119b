/// Tells when there is a tray to put an item into: a host of status notifier items, or a tray of
/// the older kind on an X server. Qt's own answer is of no use here, since it keeps the first one
/// it gave, and at login the host may be late. Thread: main.
#pragma once

#include <QDBusServiceWatcher>
#include <QObject>

namespace tobrin {

class TrayHosts final : public QObject {
  Q_OBJECT

 public:
  /// Starts to look; `appeared` never comes before the event loop runs.
  explicit TrayHosts(QObject* parent = nullptr);

  /// Whether an X server's tray is there now.
  [[nodiscard]] static bool hasEmbeddingTray();

 signals:
  /// A host of status notifier items is there; may come more than once.
  void appeared();

 private slots:
  void ask();

 private:
  QDBusServiceWatcher watcher_;
};

}  // namespace tobrin
