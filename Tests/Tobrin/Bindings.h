/// What a view binds to, read as text. Thread: main.
#pragma once

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QMetaProperty>
#include <QSignalSpy>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tobrin::testing {

inline std::string textOf(const QVariant& value) {
  const auto json = QJsonDocument::fromVariant(QVariantList{value}).toJson(QJsonDocument::Compact);
  return json.mid(1, json.size() - 2).toStdString();
}

/// Every property of an object. It may change only with its signal.
class Bindings final {
 public:
  explicit Bindings(QObject& object) : object_(object) {
    const QMetaObject& type = *object.metaObject();
    for (int i = type.propertyOffset(); i < type.propertyCount(); ++i) {
      const QMetaProperty property = type.property(i);
      places_.push_back({property, textOf(property.read(&object)),
                         property.isConstant()
                             ? nullptr
                             : std::make_unique<QSignalSpy>(&object, property.notifySignal())});
      log(places_.back());
    }
  }

  /// Notes what has changed.
  void look() {
    for (Place& place : places_) {
      const std::string now = textOf(place.property.read(&object_));
      if (std::exchange(place.shown, now) == now) continue;
      EXPECT_TRUE(place.signal && !place.signal->isEmpty()) << place.property.name();
      log(place);
    }
    for (const Place& place : places_)
      if (place.signal) place.signal->clear();
  }

  /// What has changed since the last time, a line each; at first, everything.
  std::string changes() { return std::exchange(changes_, {}); }

  /// Sets every property that can be set to another value.
  void setAll() {
    for (const Place& place : places_) {
      if (!place.property.isWritable()) continue;
      const QVariant now = place.property.read(&object_);
      QVariant other = !now.toBool();
      if (now.typeId() == QMetaType::Double) other = now.toDouble() / 2;
      if (now.typeId() == QMetaType::Int) other = now.toInt() + 2;
      place.property.write(&object_, other);
    }
  }

 private:
  struct Place {
    QMetaProperty property;
    std::string shown;
    std::unique_ptr<QSignalSpy> signal;
  };
  void log(const Place& place) {
    changes_ += std::string("  ") + place.property.name() + ": " + place.shown + "\n";
  }

  QObject& object_;
  std::vector<Place> places_;
  std::string changes_;
};

}  // namespace tobrin::testing
