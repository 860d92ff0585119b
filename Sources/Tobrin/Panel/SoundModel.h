/// What the panel's controls for the output devices bind to: the names of the devices, and how much
/// louder it may be on the one that plays. Keeps no state. Thread: main.
#pragma once

#include <QObject>
#include <QStringList>
#include <QtQmlIntegration>

namespace tobrin {

class AppModel;
class OutputChoice;

class SoundModel final : public QObject {
  Q_OBJECT
  QML_NAMED_ELEMENT(SoundModel)
  QML_UNCREATABLE("handed to the panel by the program")

  Q_PROPERTY(QStringList outputs READ outputs NOTIFY changed)
  Q_PROPERTY(int outputIndex READ outputIndex WRITE setOutputIndex NOTIFY changed)
  Q_PROPERTY(QString outputNote READ outputNote NOTIFY changed)
  Q_PROPERTY(double boost READ boost WRITE setBoost NOTIFY changed)
  Q_PROPERTY(double mostBoost READ mostBoost CONSTANT)

 public:
  explicit SoundModel(AppModel& model, QObject* parent = nullptr);

  /// The system's default first.
  [[nodiscard]] QStringList outputs() const;
  [[nodiscard]] int outputIndex() const;
  /// Another index than those of `outputs` changes nothing.
  void setOutputIndex(int index);
  /// Which device plays now, where the choice does not say it; else empty.
  [[nodiscard]] QString outputNote() const;
  [[nodiscard]] double boost() const;
  void setBoost(double boost);
  [[nodiscard]] double mostBoost() const;

  Q_INVOKABLE void playOneKey();

 signals:
  void changed();

 private:
  AppModel& model_;
  OutputChoice& choice_;
};

}  // namespace tobrin
