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

void DesktopWorkspace::openKeyAccessSettings(std::function<void(const std::string&)> onEnd) {
  if (grant_ && grant_->state() != QProcess::NotRunning) return;  // the user is being asked
  // A program that runs where it was built has its helper beside it.
  const auto built = program_.parent_path() / "tobrin-key-access";
  std::error_code error;
  const QString helper = std::filesystem::exists(built, error)
                             ? QString::fromStdString(built.string())
                             : QString(TOBRIN_KEY_ACCESS_HELPER);
  grant_ = std::make_unique<QProcess>();
  grant_->setProcessChannelMode(QProcess::ForwardedOutputChannel);
  QObject::connect(grant_.get(), &QProcess::errorOccurred, grant_.get(),
                   [onEnd](QProcess::ProcessError problem) {
                     if (problem == QProcess::FailedToStart) onEnd("pkexec is not installed");
                   });
  QObject::connect(grant_.get(), &QProcess::finished, grant_.get(),
                   [this, onEnd](int status) { onEnd(grantProblem(status)); });
  grant_->start("pkexec", {helper, "grant"});
}

std::string DesktopWorkspace::grantProblem(int status) {
  constexpr int dismissed = 126;  // by the user
  if (status == 0 || status == dismissed) return {};
  const auto lines = QString::fromUtf8(grant_->readAllStandardError()).trimmed().split('\n');
  return lines.last().isEmpty() ? "it was not allowed" : lines.last().toStdString();
}

std::string DesktopWorkspace::relaunch() {
  // The new instance waits until this one has given up its place.
  return start(QString::fromStdString(program_.string()), {Application::relaunchedArgument});
}

void DesktopWorkspace::terminate() {
  QCoreApplication::quit();
}

}  // namespace tobrin
