#include "Panel/Placing/KWinPlacer.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <array>
#include <chrono>
#include <utility>

namespace tobrin {
namespace {

using namespace std::chrono_literals;

constexpr auto patience = 3s;
/// KWin forgets a script some time after it was told to, and takes no other of its name until then.
constexpr std::array names{"app.tobrin.PlacePanel", "app.tobrin.PlacePanelAgain"};

/// Calls on one connection arrive in their order, so that none has to wait for another's answer.
void call(const char* method, const QVariantList& arguments = {}) {
  auto message = QDBusMessage::createMethodCall("org.kde.KWin", "/Scripting",
                                                "org.kde.kwin.Scripting", method);
  message.setAutoStartService(false);
  message.setArguments(arguments);
  QDBusConnection::sessionBus().send(message);
}

}  // namespace

KWinPlacer::KWinPlacer(QString script) : script_(std::move(script)) {
  patience_.setSingleShot(true);
  patience_.setInterval(patience);
  patience_.callOnTimeout([this] { unload(); });
  for (const char* const name : names)  // of a Tobrin that was killed
    call("unloadScript", {name});
}

KWinPlacer::~KWinPlacer() {
  if (patience_.isActive()) unload();
}

void KWinPlacer::placeNext() {
  if (patience_.isActive()) unload();  // of the last time
  name_ = (name_ + 1) % names.size();
  call("loadScript", {script_, names[name_]});
  call("start");
  patience_.start();
}

void KWinPlacer::unload() {
  patience_.stop();
  call("unloadScript", {names[name_]});
}

}  // namespace tobrin
