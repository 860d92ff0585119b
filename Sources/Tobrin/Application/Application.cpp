#include "Application/Application.h"

#include <malloc.h>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <thread>

#include "Application/Assembly.h"
#include "Application/Modules.h"
#include "Application/SignalWatcher.h"
#include "Application/TerminalReport.h"
#include "Application/Translation.h"
#include "Base/Environment.h"
#include "Confinement/Confinement.h"
#include "Confinement/Launcher.h"
#include "Desktop/SingleInstance.h"
#include "System/RuntimeFolder.h"

namespace tobrin {
namespace {

bool isStartedWith(const char* argument, int argc, char** argv) {
  return argc > 1 && std::strcmp(argv[1], argument) == 0;
}

/// Becomes the one instance. A relaunched program gives the one before it time to end.
std::unique_ptr<SingleInstance> takePlace(int argc, char** argv) {
  using namespace std::chrono_literals;
  const bool isRelaunched = isStartedWith(relaunchedArgument, argc, argv);
  constexpr int tries = 50;
  for (int i = 0;; ++i) {
    auto instance = std::make_unique<SingleInstance>(runtimeFolder());
    if (instance->isFirst() || !isRelaunched || i == tries) return instance;
    std::this_thread::sleep_for(100ms);
  }
}

int bringUpTheOther(const SingleInstance& instance) {
  const bool shown = instance.askFirstToShow();
  std::puts(shown ? "Tobrin is already running."
                  : "Tobrin is already running, but does not answer.");
  return shown ? 0 : 1;
}

/// What ends with the process can wait for a sound device that never answers, and would keep the
/// lock of the one instance, with all signals held back. What is to be saved takes moments. Shorter
/// than a relaunched program waits for this one.
void endInTime() {
  using namespace std::chrono_literals;
  std::thread([] {
    std::this_thread::sleep_for(3s);
    std::_Exit(0);
  }).detach();
}

/// Null where there is no display, or its libraries are missing.
std::unique_ptr<UserInterface> userInterface() {
  if (processVariable("DISPLAY").empty() && processVariable("WAYLAND_DISPLAY").empty()) {
    std::puts("No display: playing without tray and panel.");
    return nullptr;
  }
  const TrayModule* const tray = loadTrayModule();
  return tray != nullptr ? tray->makeInterface() : nullptr;
}

}  // namespace

int runApplication(int argc, char** argv) {
  const auto instance = takePlace(argc, argv);
  if (!instance->isFirst()) {
    const bool isByDesktop =
        isStartedWith(atLoginArgument, argc, argv) || isStartedWith(restoredArgument, argc, argv);
    return isByDesktop ? 0 : bringUpTheOther(*instance);
  }

  const Launcher launcher(DesktopWorkspace::errands());
  takeNoPrivileges();
  SignalWatcher::holdSignals();
  // NOLINTBEGIN(concurrency-mt-unsafe): there is one thread yet
  mallopt(M_ARENA_MAX, 1);  // threads seldom allocate at once: a heap for each is mostly empty
  // Fixed: otherwise, once one large block was freed, later large ones would stay in the heap.
  mallopt(M_MMAP_THRESHOLD, 128 * 1024);
  // NOLINTEND(concurrency-mt-unsafe)
  const auto interface = userInterface();
  const auto application = interface != nullptr ? interface->makeApplication(argc, argv)
                                                : std::make_unique<QCoreApplication>(argc, argv);
  if (interface != nullptr) installTranslation();
  const SignalWatcher endOnSignal([] { QCoreApplication::quit(); });
  QObject::connect(application.get(), &QCoreApplication::aboutToQuit, endInTime);
  Assembly assembly(launcher);
  const TerminalReport report(assembly.model());
  if (interface != nullptr) interface->start(assembly.model());
  refuseNetwork();

  QSocketNotifier calls(instance->listeningSocket(), QSocketNotifier::Read);
  calls.setEnabled(instance->listeningSocket() >= 0);
  QObject::connect(&calls, &QSocketNotifier::activated, &calls, [&] {
    if (instance->takeShowRequests() && interface != nullptr) interface->showPanel();
  });
  const int status = QCoreApplication::exec();
  if (interface != nullptr) interface->stop();
  return status;
}

}  // namespace tobrin
