/// What the panel's page for recording one's own keyboard binds to: the guide's state in the types
/// and texts of a view. Thread: main.
#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QtQmlIntegration>

namespace tobrin {

class AppModel;
class RecordingGuide;

class RecordingModel final : public QObject {
  Q_OBJECT
  QML_NAMED_ELEMENT(RecordingModel)
  QML_UNCREATABLE("handed to the panel by the program")

  Q_PROPERTY(tobrin::RecordingModel::Stage stage READ stage NOTIFY changed)
  Q_PROPERTY(QStringList inputs READ inputs NOTIFY changed)
  Q_PROPERTY(int inputIndex READ inputIndex NOTIFY changed)
  Q_PROPERTY(QString inputWarning READ inputWarning NOTIFY changed)
  Q_PROPERTY(double level READ level NOTIFY levelChanged)
  Q_PROPERTY(QString advice READ advice NOTIFY changed)
  Q_PROPERTY(bool soundsGood READ soundsGood NOTIFY changed)
  Q_PROPERTY(QString problem READ problem NOTIFY changed)
  Q_PROPERTY(int step READ step NOTIFY changed)
  Q_PROPERTY(QVariantList steps READ steps CONSTANT)
  Q_PROPERTY(QList<int> counts READ counts NOTIFY changed)
  Q_PROPERTY(bool paused READ paused NOTIFY changed)
  Q_PROPERTY(QString report READ report NOTIFY changed)

 public:
  // NOLINTNEXTLINE(readability-identifier-naming): QML demands names that begin with a capital
  enum Stage { Away, Microphone, Typing, Building, Listening };
  Q_ENUM(Stage)

  explicit RecordingModel(AppModel& model, QObject* parent = nullptr);

  [[nodiscard]] Stage stage() const;
  [[nodiscard]] QStringList inputs() const;
  [[nodiscard]] int inputIndex() const;  ///< -1 where there is none
  /// What to know of the chosen microphone; empty where there is nothing.
  [[nodiscard]] QString inputWarning() const;
  /// The loudest of the last second, 0 (-60 dBFS) to 1 (full scale).
  [[nodiscard]] double level() const;
  /// Whether the sound will do, in words.
  [[nodiscard]] QString advice() const;
  [[nodiscard]] bool soundsGood() const;
  [[nodiscard]] QString problem() const;  ///< empty while there is none
  [[nodiscard]] int step() const;         ///< place in `steps`
  /// Maps of title, instruction, sample, wanted.
  [[nodiscard]] QVariantList steps() const;
  [[nodiscard]] QList<int> counts() const;  ///< good sounds of each step so far
  [[nodiscard]] bool paused() const;
  [[nodiscard]] QString report() const;  ///< of the stage `Listening`

  Q_INVOKABLE void begin();
  Q_INVOKABLE void chooseInput(int index);
  Q_INVOKABLE void startTyping();
  Q_INVOKABLE void pause();
  Q_INVOKABLE void resume();
  Q_INVOKABLE void skip();
  Q_INVOKABLE void finish();
  Q_INVOKABLE void typeMore();
  Q_INVOKABLE void listen();
  Q_INVOKABLE void keep(const QString& name);
  Q_INVOKABLE void leave();
  void panelClosed();

 signals:
  void changed();
  void levelChanged();

 private:
  RecordingGuide& guide_;
};

}  // namespace tobrin
