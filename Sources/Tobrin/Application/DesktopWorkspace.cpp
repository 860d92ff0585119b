#include "Application/DesktopWorkspace.h"

#include <fcntl.h>
#include <unistd.h>

#include <QCoreApplication>
#include <array>
#include <cerrno>
#include <filesystem>
#include <stdexcept>

#include "Application/Application.h"
#include "Base/SystemFolders.h"
#include "Evdev/KeyBroker.h"
#include "Evdev/KeyRule.h"
#include "Evdev/KeyboardList.h"
#include "Packs/PackLibrary.h"
#include "System/Spawn.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

/// Empty where the system knows no home folder.
fs::path packsFolder() {
  try {
    return userPacksDirectory();
  } catch (const std::runtime_error&) {
    return {};
  }
}

/// A program that runs where it was built has its helper next to it.
std::string keyAccessHelper(const fs::path& program) {
  const fs::path built = program.parent_path() / "tobrin-key-access";
  std::error_code error;
  return fs::exists(built, error) ? built.string() : TOBRIN_KEY_ACCESS_HELPER;
}

/// What the end of the helper that removes the rule means: the reason it gave, empty for success or
/// where the user changed their mind. `report` is the launcher's.
std::string removalProblem(const std::string& report) {
  constexpr int dismissed = 126;  // by the user
  auto lines = QString::fromStdString(report).split('\n', Qt::SkipEmptyParts);
  const int status = lines.isEmpty() ? -1 : lines.takeLast().toInt();
  if (status == 0 || status == dismissed) return {};
  const QString reason = lines.isEmpty() ? QString() : lines.last().trimmed();
  return reason.isEmpty() ? "it was not allowed" : reason.toStdString();
}

}  // namespace

Launcher::Commands DesktopWorkspace::errands() {
  const fs::path program = thisProgram();
  Launcher::Commands commands;
  const auto command = [&](Errand errand) -> Launcher::Command& {
    return commands[static_cast<std::size_t>(errand)];
  };
  command(Errand::showPacksFolder) = {"xdg-open", packsFolder().string()};
  command(Errand::removeKeyRule) = {"pkexec", keyAccessHelper(program), "--remove"};
  command(Errand::relaunch) = {program.string(), relaunchedArgument};
  return commands;
}

DesktopWorkspace::DesktopWorkspace(const Launcher& launcher)
    : launcher_(launcher),
      sleep_([this] {
        if (onWake_) onWake_();
      }),
      lock_([this](bool isLocked) {
        if (onLock_) onLock_(isLocked);
      }) {
  QObject::connect(qApp, &QCoreApplication::aboutToQuit, qApp, [this] {
    if (onTerminate_) onTerminate_();
  });
  hearSleep();
  hearLock();
}

void DesktopWorkspace::hearSleep() {
  if (sleep_.descriptor() < 0) return;
  sleepNotifier_ = std::make_unique<QSocketNotifier>(sleep_.descriptor(), QSocketNotifier::Read);
  QObject::connect(sleepNotifier_.get(), &QSocketNotifier::activated, sleepNotifier_.get(), [this] {
    if (!sleep_.process()) sleepNotifier_->setEnabled(false);
  });
}

void DesktopWorkspace::hearLock() {
  if (lock_.descriptor() < 0) return;
  lockNotifier_ = std::make_unique<QSocketNotifier>(lock_.descriptor(), QSocketNotifier::Read);
  QObject::connect(lockNotifier_.get(), &QSocketNotifier::activated, lockNotifier_.get(),
                   [this] { lock_.process(); });
}

void DesktopWorkspace::setOnLock(std::function<void(bool)> onLock) {
  onLock_ = std::move(onLock);
  if (onLock_ && lock_.isLocked()) onLock_(true);
}

void DesktopWorkspace::setOnTerminate(std::function<void()> onTerminate) {
  onTerminate_ = std::move(onTerminate);
}

std::string DesktopWorkspace::openPacksFolder() {
  const fs::path folder = packsFolder();
  if (folder.empty()) return "the system knows no home folder";
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) return folder.string() + ": " + error.message();
  return launcher_.start(Errand::showPacksFolder);
}

void DesktopWorkspace::openKeyAccessSettings(OnEnd onEnd) {
  if (consentNotifier_) return;  // an administrator is being asked
  if (!KeyboardList::isPossible()) return onEnd("this system has no input devices");
  if (!KeyConsent::isPossible()) return onEnd("the service tobrin-keys is not installed");
  constexpr bool remember = true;
  consent_ = std::make_unique<KeyConsent>(remember, std::move(onEnd));
  if (consent_->descriptor() >= 0) hearAnswer();
}

void DesktopWorkspace::hearAnswer() {
  consentNotifier_ =
      std::make_unique<QSocketNotifier>(consent_->descriptor(), QSocketNotifier::Read);
  QObject::connect(consentNotifier_.get(), &QSocketNotifier::activated, qApp, [this] {
    if (consent_->process()) return;
    consentNotifier_->setEnabled(false);
    consentNotifier_.release()->deleteLater();  // it is calling us
    consent_.reset();
  });
}

bool DesktopWorkspace::canNarrowKeyAccess() {
  return isKeyRuleInstalled() && KeyConsent::isPossible();
}

/// Asks for the consent first: without it, removing the rule would end the access.
void DesktopWorkspace::narrowKeyAccess(OnEnd onEnd) {
  if (removalNotifier_) return;
  if (broker::isAllowed()) return removeKeyRule(std::move(onEnd));
  openKeyAccessSettings([this, onEnd = std::move(onEnd)](const std::string& problem) {
    if (!problem.empty()) return onEnd(problem);
    removeKeyRule(onEnd);
  });
}

void DesktopWorkspace::giveBackKeyAccess(OnEnd onEnd) {
  if (removalNotifier_) return;
  const std::string problem = KeyConsent::isPossible() ? broker::takeBack() : "";
  if (!problem.empty() || !isKeyRuleInstalled()) return onEnd(problem);
  removeKeyRule(std::move(onEnd));
}

void DesktopWorkspace::removeKeyRule(OnEnd onEnd) {
  std::optional<Pipe> pipe = makePipe();
  if (!pipe) return onEnd("no file descriptors left");
  removalReport_ = std::move(pipe->reading);
  fcntl(removalReport_.get(), F_SETFL, O_NONBLOCK);
  if (!launcher_.start(Errand::removeKeyRule, pipe->writing.get()).empty())
    return onEnd("pkexec is not installed");
  onRemovalEnd_ = std::move(onEnd);
  removalText_.clear();
  removalNotifier_ = std::make_unique<QSocketNotifier>(removalReport_.get(), QSocketNotifier::Read);
  QObject::connect(removalNotifier_.get(), &QSocketNotifier::activated, qApp,
                   [this] { takeRemovalReport(); });
}

void DesktopWorkspace::takeRemovalReport() {
  std::array<char, 1024> piece;
  ssize_t length = 0;
  const auto readPiece = [&] { return read(removalReport_.get(), piece.data(), piece.size()); };
  while ((length = retried(readPiece)) > 0)
    removalText_.append(piece.data(), static_cast<std::size_t>(length));
  if (length < 0 && errno == EAGAIN) return;
  removalNotifier_->setEnabled(false);
  removalNotifier_.release()->deleteLater();  // it is calling us
  removalReport_.reset();
  onRemovalEnd_(removalProblem(removalText_));
}

bool DesktopWorkspace::isUpdated() const {
  return isThisProgramReplaced();
}

std::string DesktopWorkspace::relaunch() {
  return launcher_.start(Errand::relaunch);
}

void DesktopWorkspace::terminate() {
  QCoreApplication::quit();
}

}  // namespace tobrin
