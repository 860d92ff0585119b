/// What the panel's views bind to for packs that are added, removed and brought back: the shelf's
/// state in the texts of a view. Thread: main.
#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QUrl>
#include <QtQmlIntegration>

namespace tobrin {

class AppModel;

class PackShelfModel final : public QObject {
  Q_OBJECT
  QML_NAMED_ELEMENT(PackShelfModel)
  QML_UNCREATABLE("handed to the panel by the program")

  Q_PROPERTY(QString activity READ activity NOTIFY changed)
  Q_PROPERTY(double fraction READ fraction NOTIFY changed)
  Q_PROPERTY(QString problem READ problem NOTIFY changed)
  Q_PROPERTY(QString removed READ removed NOTIFY changed)
  Q_PROPERTY(QString invitation READ invitation NOTIFY changed)

 public:
  /// How the user is asked which packs to add.
  enum class Asking : uint8_t { no, byChooser, byDropping };

  explicit PackShelfModel(AppModel& model, QObject* parent = nullptr);

  [[nodiscard]] QString activity() const;  ///< what is being added; empty while nothing is
  [[nodiscard]] double fraction() const;   ///< of it, 0 to 1
  [[nodiscard]] QString problem() const;   ///< empty while there is none
  /// What can be brought back, in a sentence; empty where nothing can.
  [[nodiscard]] QString removed() const;
  /// Asks the user to drop packs, where there is no other way to choose them; else empty.
  [[nodiscard]] QString invitation() const;
  /// The panel stays open while it asks, wherever the focus goes.
  [[nodiscard]] bool isAsking() const { return asking_ != Asking::no; }

  void setAsking(Asking asking);
  /// The panel has been closed: what it said was seen.
  void panelClosed();

  /// Files and folders of this machine are taken; other addresses are not.
  Q_INVOKABLE void add(const QList<QUrl>& places);
  Q_INVOKABLE void choose();
  Q_INVOKABLE void cancel();
  Q_INVOKABLE void remove(const QString& packID);
  Q_INVOKABLE void bringBack();

 signals:
  void changed();
  void choiceWanted();  ///< the user is to be asked which packs to add

 private:
  AppModel& model_;
  Asking asking_ = Asking::no;
};

}  // namespace tobrin
