/// Whether the desktop wants dark windows: the portal's setting where there is one, else the
/// palette. Thread: main.
#pragma once

#include <QDBusVariant>
#include <QObject>
#include <QVariant>

namespace tobrin {

class ColorScheme final : public QObject {
  Q_OBJECT

 public:
  explicit ColorScheme(QObject* parent = nullptr);

  [[nodiscard]] bool isDark() const;

 signals:
  void changed();

 private slots:
  void portalChanged(const QString& space, const QString& key, const QDBusVariant& value);

 private:
  bool eventFilter(QObject* watched, QEvent* event) override;

  enum class Wish { none, dark, light };
  void askPortal();
  void take(const QVariant& value);

  Wish wish_ = Wish::none;
};

}  // namespace tobrin
