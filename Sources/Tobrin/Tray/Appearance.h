/// How the desktop wants its windows to look: by the settings of its portal, or by the palette.
/// Thread: main.
#pragma once

#include <QDBusMessage>
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
  void portalChanged(const QDBusMessage& signal);

 private:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void ask(const QString& space, const QString& key);
  void take(const QString& setting, const QVariant& value);
  [[nodiscard]] bool isDark() const;

  QMap<QString, QVariant> settings_;  // as the portal answered, by space and key
};

}  // namespace tobrin
