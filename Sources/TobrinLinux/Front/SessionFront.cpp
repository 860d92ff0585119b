#include "Front/SessionFront.h"

#include "Desktop/KWinScripts.h"
#include "Desktop/SessionKind.h"
#include "Front/FrontThread.h"
#include "Front/KWinFrontFeed.h"
#include "Front/ToplevelFrontFeed.h"
#include "Front/XFrontFeed.h"

namespace tobrin {
namespace {

/// The feed, in sessions of its kind. The kind is found out when it is needed.
template <typename Make>
FrontThread::MakeFeed only(SessionKind kind, const Environment& environment, Make make) {
  return [=]() -> std::unique_ptr<FrontFeed> {
    return sessionKind(environment) == kind ? make() : nullptr;
  };
}

}  // namespace

std::unique_ptr<FrontWindow> makeFrontWindow(const Environment& environment) {
  return std::make_unique<FrontThread>(std::vector{
      only(SessionKind::x11, environment,
           [=] { return std::make_unique<XFrontFeed>(environment("DISPLAY").value_or("")); }),
      only(SessionKind::wayland, environment, [] { return std::make_unique<ToplevelFrontFeed>(); }),
      only(SessionKind::wayland, environment,
           [] { return std::make_unique<KWinFrontFeed>(kwinScript("front-window.js")); }),
  });
}

}  // namespace tobrin
