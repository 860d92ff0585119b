/// Asks the user for packs by the desktop's own file chooser, by way of the desktop portal. The
/// choice is made in another process: nothing of it stays in this one. Thread: main.
#pragma once

#include <QDBusPendingCallWatcher>
#include <QList>
#include <QObject>
#include <QUrl>
#include <QVariantMap>
#include <memory>

namespace tobrin {

class PackChooser final : public QObject {
  Q_OBJECT

 public:
  explicit PackChooser(QObject* parent = nullptr) : QObject(parent) {}
  ~PackChooser() override;

  /// Asks once; `parentWindow` as portals name windows, or empty. One of the signals follows.
  void ask(const QString& parentWindow);

 signals:
  void chosen(const QList<QUrl>& files);  ///< none where the user changed their mind
  void failed();                          ///< the desktop has no file chooser for us

 private slots:
  void answered(uint response, const QVariantMap& results);

 private:
  void listen(const QString& request);
  void sent(QDBusPendingCallWatcher* call);
  void end();

  QString request_;  // the object that answers; empty while nothing is asked
};

}  // namespace tobrin
