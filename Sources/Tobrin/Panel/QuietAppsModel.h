/// What the panel binds to of the applications that Tobrin is quiet in. Thread: main.
#pragma once

#include <QObject>
#include <QVariantList>
#include <QtQmlIntegration>

namespace tobrin {

class AppModel;

class QuietAppsModel final : public QObject {
  Q_OBJECT
  QML_NAMED_ELEMENT(QuietAppsModel)
  QML_UNCREATABLE("handed to the panel by the program")

  /// Each with `name` and `icon`, the name of a picture or empty.
  Q_PROPERTY(QVariantList apps READ apps NOTIFY wishChanged)
  /// The application in front; empty where there is none, or it is among them.
  Q_PROPERTY(QString candidate READ candidate NOTIFY candidateChanged)
  Q_PROPERTY(bool inFullScreen READ inFullScreen WRITE setInFullScreen NOTIFY wishChanged)
  /// Why it cannot be known what is in front; empty where it can.
  Q_PROPERTY(QString problem READ problem NOTIFY candidateChanged)

 public:
  explicit QuietAppsModel(AppModel& model, QObject* parent = nullptr);

  [[nodiscard]] QVariantList apps() const;
  [[nodiscard]] QString candidate() const;
  [[nodiscard]] bool inFullScreen() const;
  void setInFullScreen(bool on);
  [[nodiscard]] QString problem() const;

  Q_INVOKABLE void addCandidate();
  Q_INVOKABLE void remove(int index);

 signals:
  void wishChanged();
  void candidateChanged();

 private:
  AppModel& model_;
};

}  // namespace tobrin
