#include "Application/DesktopWorkspace.h"

#include <QCoreApplication>
#include <QProcess>

#include "Application/Application.h"

namespace tobrin {
namespace {

/// Starts a helper program of the desktop; returns why it could not be started.
std::string start(const QString& program, const QStringList& arguments) {
  return QProcess::startDetached(program, arguments)
             ? ""
             : (program + " can't be started").toStdString();
}

}  // namespace

DesktopWorkspace::DesktopWorkspace(std::filesystem::path program)
    : program_(std::move(program)), sleep_([this] {
        if (onWake_) onWake_();
      }) {
  QObject::connect(qApp, &QCoreApplication::aboutToQuit, qApp, [this] {
    if (onTerminate_) onTerminate_();
  });
  hearSleep();
}

void DesktopWorkspace::hearSleep() {
  if (sleep_.descriptor() < 0) return;
  sleepNotifier_ = std::make_unique<QSocketNotifier>(sleep_.descriptor(), QSocketNotifier::Read);
  QObject::connect(sleepNotifier_.get(), &QSocketNotifier::activated, sleepNotifier_.get(), [this] {
    if (!sleep_.process()) sleepNotifier_->setEnabled(false);
  });
}

void DesktopWorkspace::setOnTerminate(std::function<void()> onTerminate) {
  onTerminate_ = std::move(onTerminate);
}

std::string DesktopWorkspace::openFolder(const std::filesystem::path& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (error) return folder.string() + ": " + error.message();
  return start("xdg-open", {QString::fromStdString(folder.string())});
}

std::string DesktopWorkspace::openKeyAccessSettings() {
  return start("pkexec", {TOBRIN_KEY_ACCESS_HELPER, "grant"});
}

std::string DesktopWorkspace::relaunch() {
  // The new instance waits until this one has given up its place.
  return start(QString::fromStdString(program_.string()), {Application::relaunchedArgument});
}

void DesktopWorkspace::terminate() {
  QCoreApplication::quit();
}

}  // namespace tobrin
