/// How the desktop wants its windows to look: by the portal's settings where they are told, else by
/// the palette. Thread: main.
#pragma once

#include <QDBusVariant>
#include <QMap>
#include <QObject>
#include <QVariant>

#include "Application/UserInterface.h"

namespace tobrin {

class Appearance final : public QObject {
  Q_OBJECT

 public:
  explicit Appearance(QObject* parent = nullptr);

  [[nodiscard]] Look look() const;

 signals:
  void changed();

 private slots:
  void portalChanged(const QString& space, const QString& key, const QDBusVariant& value);

 private:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void ask(const QString& space, const QString& key);
  void take(const QString& setting, const QVariant& value);
  [[nodiscard]] bool isDark() const;

  QMap<QString, QVariant> settings_;  // those that the portal has told, by space and key
};

}  // namespace tobrin
