#include "Panel/PanelPicture.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QImageWriter>
#include <QLocale>
#include <QQuickItem>
#include <QTimer>

#include "Panel/PanelWindow.h"

namespace tobrin {
namespace {

class OffscreenPicture final : public PanelPicture {
 public:
  std::unique_ptr<QCoreApplication> makeApplication() override {
    auto application = std::make_unique<QGuiApplication>(argumentCount_, arguments_);
    QGuiApplication::setLayoutDirection(QLocale().textDirection());
    return application;
  }
  std::string save(AppModel& model, const std::string& path, const Look& look, Page page) override;

 private:
  // Borrowed by the application for its life.
  int argumentCount_ = 3;
  char program_[7] = "tobrin", option_[10] = "-platform", platform_[10] = "offscreen";
  char* arguments_[4] = {program_, option_, platform_, nullptr};
};

/// Lets the panel come to rest: layouts settle, the meter's bar grows to its length.
void settle() {
  constexpr int settledAfterMs = 400;
  QEventLoop loop;
  QTimer::singleShot(settledAfterMs, &loop, &QEventLoop::quit);
  loop.exec();
}

std::string OffscreenPicture::save(AppModel& model, const std::string& path, const Look& look,
                                   Page page) {
  PanelWindow panel(model, [] {});
  QQuickView& view = panel.view();
  if (view.rootObject() == nullptr) return "The panel can't be drawn.";
  panel.setLook(look);
  view.show();
  view.rootObject()->setProperty("showsMore", page == Page::more);
  settle();
  // As large as all of it: no screen sets a limit.
  view.resize(qCeil(view.rootObject()->implicitWidth()),
              qCeil(view.rootObject()->implicitHeight()));
  settle();
  const QString file = QString::fromStdString(path);
  QImageWriter writer(file, QFileInfo(file).suffix().isEmpty() ? "png" : QByteArray());
  if (writer.write(view.grabWindow())) return {};
  return path + ": " + writer.errorString().toStdString();
}

}  // namespace

std::unique_ptr<PanelPicture> makePanelPicture() {
  return std::make_unique<OffscreenPicture>();
}

}  // namespace tobrin
