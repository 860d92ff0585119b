#include "Panel/Placing/KWinPlacer.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <chrono>

#include "Desktop/KWinScripts.h"

namespace tobrin {
namespace {

using namespace std::chrono_literals;

constexpr auto patience = 3s;
constexpr const char* scriptName = "app.tobrin.PlacePanel";

/// Calls on one connection arrive in their order, so that none has to wait for another's answer.
void call(const char* method, const QVariantList& arguments = {}) {
  auto message = QDBusMessage::createMethodCall("org.kde.KWin", "/Scripting",
                                                "org.kde.kwin.Scripting", method);
  message.setAutoStartService(false);
  message.setArguments(arguments);
  QDBusConnection::sessionBus().send(message);
}

}  // namespace

KWinPlacer::KWinPlacer() {
  patience_.setSingleShot(true);
  patience_.setInterval(patience);
  patience_.callOnTimeout([this] { unload(); });
}

KWinPlacer::~KWinPlacer() {
  if (patience_.isActive()) unload();
}

void KWinPlacer::placeNext() {
  const std::string script = kwinScript("place-panel.js");
  if (script.empty()) return;
  unload();  // of the last time, or of a Tobrin that was killed
  call("loadScript", {QString::fromStdString(script), scriptName});
  call("start");
  patience_.start();
}

void KWinPlacer::unload() {
  patience_.stop();
  call("unloadScript", {scriptName});
}

}  // namespace tobrin
