#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <memory>
#include <stdexcept>
#include <vector>

namespace {

/// What the lights need of the panel's model, and how often a light has changed.
class Strokes final : public QObject {
  Q_OBJECT

 public:
  int changes = 0;

 public slots:
  void count() { ++changes; }

 signals:
  void keyStruck(double column, bool isBottom, int tier, double strength);
};

using Places = std::vector<std::size_t>;

class KeyLightsTest : public ::testing::Test {
 protected:
  KeyLightsTest() {
    const QString folder = TOBRIN_PANEL "/";
    const int theme = qmlRegisterSingletonType(QUrl::fromLocalFile(folder + "Theme.qml"), "Tobrin",
                                               1, 0, "Theme");
    qmlRegisterUncreatableType<Strokes>("Tobrin", 1, 0, "PanelModel", {});
    theme_ = engine_.singletonInstance<QObject*>(theme);
    QQmlComponent component(&engine_, QUrl::fromLocalFile(folder + "KeyLights.qml"));
    lights_.reset(qobject_cast<QQuickItem*>(component.createWithInitialProperties(
        {{"model", QVariant::fromValue(&strokes_)}, {"width", 300}})));
    if (!lights_) throw std::runtime_error(component.errorString().toStdString());
    lights_->setParentItem(window_.contentItem());
    window_.show();
    for (QQuickItem* child : lights_->childItems()) {
      if (!child->property("glow").isValid()) continue;
      places_.push_back(child);
      QObject::connect(child, SIGNAL(glowChanged()), &strokes_, SLOT(count()));
    }
  }

  [[nodiscard]] double glow(std::size_t place) const {
    return places_.at(place)->property("glow").toDouble();
  }

  /// The places that shine, in order: the keys from left to right, then the row of the space bar.
  [[nodiscard]] Places shining() const {
    Places found;
    for (std::size_t place = 0; place < places_.size(); ++place)
      if (glow(place) > 0) found.push_back(place);
    return found;
  }

  bool areOutSoon() {
    return QTest::qWaitFor([this] { return shining().empty(); });
  }

  const bool drawsInSoftware_ = qputenv("QT_QUICK_BACKEND", "software");
  int count_ = 3;
  char name_[5] = "test", option_[10] = "-platform", platform_[10] = "offscreen";
  char* words_[4] = {name_, option_, platform_, nullptr};
  QGuiApplication application_{count_, words_};
  QQmlEngine engine_;
  QObject* theme_ = nullptr;
  Strokes strokes_;
  QQuickWindow window_;
  std::unique_ptr<QQuickItem> lights_;
  std::vector<QQuickItem*> places_;
};

TEST_F(KeyLightsTest, StrokesAreShownWithoutBetrayingTheKeyAndOnlyToSomebody) {
  struct Case {
    double column;
    bool isBottom;
    Places places;
  };
  // Neighbours share a place, across the rows of the keyboard and along the lowest one.
  for (const auto& [column, isBottom, places] :
       {Case{2.5, false, {2}}, Case{2.9, false, {2}}, Case{99, false, {14}}, Case{1, true, {15}},
        Case{3.9, true, {15}}, Case{6, true, {16}}, Case{10, true, {17}}}) {
    emit strokes_.keyStruck(column, isBottom, 1, 0.5);
    EXPECT_EQ(shining(), places) << column;
    window_.hide();
    EXPECT_EQ(shining(), Places()) << "out at once, as nobody sees it";
    window_.show();
  }

  emit strokes_.keyStruck(1, false, 0, 0);
  emit strokes_.keyStruck(5, false, 3, 1);
  EXPECT_GE(glow(5), glow(1) + 0.25) << "by strength";
  EXPECT_NE(places_[1]->property("glowColor"), places_[5]->property("glowColor"));
  strokes_.changes = 0;
  EXPECT_TRUE(areOutSoon());
  EXPECT_GT(strokes_.changes, 8) << "they fade";

  theme_->setProperty("reducedMotion", true);
  strokes_.changes = 0;
  emit strokes_.keyStruck(3, false, 2, 1);
  EXPECT_EQ(glow(3), 1);
  EXPECT_TRUE(areOutSoon());
  EXPECT_EQ(strokes_.changes, 2) << "with less motion they go on and off";

  for (const bool lessMotion : {false, true}) {
    theme_->setProperty("reducedMotion", lessMotion);
    emit strokes_.keyStruck(3, false, 2, 1);
    window_.hide();
    strokes_.changes = 0;
    emit strokes_.keyStruck(4, true, 2, 1);
    QTest::qWait(400);
    EXPECT_EQ(strokes_.changes, 0) << "nothing happens in a panel that is closed";
    window_.show();
  }
}

}  // namespace

#include "KeyLightsTests.moc"
