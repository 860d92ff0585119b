/// What the panel binds to of the keyboards that stay silent. Thread: main.
#pragma once

#include <QObject>
#include <QStringList>
#include <QtQmlIntegration>

namespace tobrin {

class AppModel;

class HeldBackModel final : public QObject {
  Q_OBJECT
  QML_NAMED_ELEMENT(HeldBackModel)
  QML_UNCREATABLE("handed to the panel by the program")

  Q_PROPERTY(QStringList names READ names NOTIFY namesChanged)
  /// Whether they are the usual ones.
  Q_PROPERTY(bool isUsual READ isUsual NOTIFY namesChanged)

 public:
  explicit HeldBackModel(AppModel& model, QObject* parent = nullptr);

  [[nodiscard]] QStringList names() const;
  [[nodiscard]] bool isUsual() const;

  /// Ignores a name that is empty or there already.
  Q_INVOKABLE void add(const QString& name);
  Q_INVOKABLE void remove(int index);
  Q_INVOKABLE void takeUsual();

 signals:
  void namesChanged();

 private:
  void set(const QStringList& names);

  AppModel& model_;
};

}  // namespace tobrin
