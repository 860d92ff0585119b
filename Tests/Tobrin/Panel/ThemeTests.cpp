#include <gtest/gtest.h>

#include <QColor>
#include <QGuiApplication>
#include <QQmlEngine>
#include <QVariant>
#include <cmath>
#include <memory>

#include "Support/ToolkitThreads.h"

namespace {

double linear(double channel) {
  return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

/// As the Web Content Accessibility Guidelines 2.1 define it.
double luminance(const QColor& color) {
  return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
         0.0722 * linear(color.blueF());
}

double contrast(const QColor& one, const QColor& other) {
  const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
  return (lighter + 0.05) / (darker + 0.05);
}

class ThemeTest : public ::testing::Test {
 protected:
  ThemeTest() {
    const int type = qmlRegisterSingletonType(QUrl::fromLocalFile(TOBRIN_PANEL "/Theme.qml"),
                                              "Test", 1, 0, "Theme");
    theme_ = engine_.singletonInstance<QObject*>(type);
  }

  [[nodiscard]] QList<QColor> colors(const char* names) const {
    QList<QColor> colors;
    for (const QString& name : QString(names).split(' ')) {
      const QVariant value = theme_->property(name.toUtf8());
      if (value.canConvert<QColor>()) {
        colors.append(value.value<QColor>());
        continue;
      }
      for (const QVariant& each : value.toList())
        colors.append(each.value<QColor>());
    }
    return colors;
  }

  /// Each of the one on each of the other.
  void expectContrast(double least, const char* inks, const char* grounds) const {
    for (const QColor& ink : colors(inks)) {
      for (const QColor& ground : colors(grounds)) {
        EXPECT_GE(contrast(ink, ground), least)
            << inks << " " << qPrintable(ink.name()) << " on " << grounds << " "
            << qPrintable(ground.name()) << (theme_->property("dark").toBool() ? ", dark" : "")
            << (theme_->property("highContrast").toBool() ? ", high contrast" : "");
      }
    }
  }

  int count_ = 3;
  char name_[5] = "test", option_[10] = "-platform", platform_[10] = "offscreen";
  char* words_[4] = {name_, option_, platform_, nullptr};
  QGuiApplication application_{count_, words_};
  QQmlEngine engine_;
  QObject* theme_ = nullptr;
};

TEST_F(ThemeTest, EverythingIsLegible) {
  ASSERT_NE(theme_, nullptr);
  constexpr double text = 4.5;
  constexpr double part = 3;
  for (const auto& [dark, high] :
       {std::pair(false, false), {true, false}, {false, true}, {true, true}}) {
    theme_->setProperty("dark", dark);
    theme_->setProperty("highContrast", high);
    expectContrast(high ? 7 : text, "text secondaryText",
                   "background surface groove hover pressed accentTint warningTint");
    expectContrast(text, "warning", "background surface warningTint");
    expectContrast(text, "accent", "surface accentTint");
    expectContrast(text, "accentInk", "accent");
    expectContrast(part, "edge", "background surface groove");
    expectContrast(part, "control focus accent", "background surface groove");
    expectContrast(part, "surface", "control");  // the knob of a switch that is off
    expectContrast(part, "tierColors", "groove surface");
  }
}

}  // namespace
