#include "Model/QuietApps.h"

#include <algorithm>
#include <utility>

#include "Base/LowerCase.h"

namespace tobrin {
namespace {

/// Ids differ in letter case between desktops, and even between X11 and Wayland programs on one.
bool isSame(const std::string& a, const std::string& b) {
  return lowerCase(a) == lowerCase(b);
}

bool isThisProgram(const std::string& id) {
  return isSame(id, "tobrin") || isSame(id, "app.tobrin.Tobrin");
}

}  // namespace

bool QuietApps::Wish::has(const std::string& id) const {
  return std::any_of(apps.begin(), apps.end(),
                     [&](const QuietApp& app) { return isSame(app.id, id); });
}

QuietApps::QuietApps(std::unique_ptr<FrontWindow> window, Describe describe, SerialQueue& main,
                     Notices notices)
    : window_(std::move(window)),
      describe_(std::move(describe)),
      main_(main),
      notices_(std::move(notices)) {}

QuietApps::~QuietApps() {
  if (following_) window_->stop();
}

void QuietApps::setWish(Wish wish) {
  if (wish_ == wish) return;
  wish_ = std::move(wish);
  follow();
  findCause();
}

void QuietApps::setAsked(bool isAsked) {
  isAsked_ = isAsked;
  if (isAsked && following_ && front_.knowledge == Front::Knowledge::desktopDoesNotTell) {
    window_->stop();  // it may tell by now
    following_.reset();
  }
  follow();
  findCandidate();
}

void QuietApps::follow() {
  const bool isNeeded = isAsked_ || wish_.inFullScreen || !wish_.apps.empty();
  if (isNeeded == (following_ != nullptr)) return;
  if (!isNeeded) {
    window_->stop();
    following_.reset();
    front_ = {};
    return;
  }
  following_ = std::make_shared<bool>(true);
  window_->start([this, alive = std::weak_ptr(following_)](const Front& front) {
    main_.async([this, alive, front] {
      if (!alive.expired()) take(front);
    });
  });
}

void QuietApps::take(const Front& front) {
  front_ = front;
  findCause();
  findCandidate();
}

/// The panel itself is in front while somebody looks at it.
void QuietApps::findCandidate() {
  if (!isAsked_) {
    candidate_.clear();
    described_.clear();
  } else if (!front_.app.empty() && !isThisProgram(front_.app)) {
    candidate_ = front_.app;
  }
  notices_.onCandidate();
}

const AppDescription& QuietApps::describe(const std::string& id) {
  const auto known = described_.find(id);
  return known != described_.end() ? known->second
                                   : described_.emplace(id, describe_(id)).first->second;
}

void QuietApps::findCause() {
  const Cause cause = causeOf(front_);
  if (std::exchange(cause_, cause) != cause) notices_.onCause();
}

QuietApps::Cause QuietApps::causeOf(const Front& front) const {
  if (front.app.empty() ? !front.fillsScreen : isThisProgram(front.app)) return {};
  const auto chosen = std::find_if(wish_.apps.begin(), wish_.apps.end(),
                                   [&](const QuietApp& app) { return isSame(app.id, front.app); });
  if (chosen != wish_.apps.end()) return {.isQuiet = true, .app = chosen->name};
  return {.isQuiet = wish_.inFullScreen && front.fillsScreen};
}

}  // namespace tobrin
