/// Whether Tobrin is to be quiet for the application in front: one that its user has chosen, or any
/// that fills the screen. Looks at what is in front only while one of these is wished for or the
/// panel asks, and forgets it afterwards. Thread: main.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Base/SerialQueue.h"
#include "Engine/FrontWindow.h"

namespace tobrin {

/// An application that was chosen.
struct QuietApp {
  std::string id;    ///< as `Front::app`, of any case
  std::string name;  ///< for people

  bool operator==(const QuietApp&) const = default;
};

class QuietApps final {
 public:
  struct Wish {
    std::vector<QuietApp> apps{};
    bool inFullScreen = false;

    [[nodiscard]] bool has(const std::string& id) const;

    bool operator==(const Wish&) const = default;
  };

  /// What it is quiet for.
  struct Cause {
    bool isQuiet = false;
    std::optional<std::string> app{};  ///< the name of the chosen one; absent: any in full screen

    bool operator==(const Cause&) const = default;
  };

  struct Notices {
    std::function<void()> onCause;      ///< `cause` has changed
    std::function<void()> onCandidate;  ///< `candidate` or `knowledge` has
  };

  /// What people call an application with this id.
  using Describe = std::function<AppDescription(const std::string& id)>;

  /// `main` is borrowed.
  QuietApps(std::unique_ptr<FrontWindow> window, Describe describe, SerialQueue& main,
            Notices notices);
  ~QuietApps();
  QuietApps(const QuietApps&) = delete;
  QuietApps& operator=(const QuietApps&) = delete;

  void setWish(Wish wish);
  /// Whether the panel is open, which asks what is in front of it.
  void setAsked(bool isAsked);

  [[nodiscard]] const Cause& cause() const { return cause_; }
  [[nodiscard]] Front::Knowledge knowledge() const { return front_.knowledge; }
  /// The application in front, or the one before this program; empty where there was none. Known
  /// while the panel asks.
  [[nodiscard]] const std::string& candidate() const { return candidate_; }
  [[nodiscard]] const AppDescription& describe(const std::string& id);

 private:
  void follow();
  void take(const Front& front);
  void findCandidate();
  void findCause();
  [[nodiscard]] Cause causeOf(const Front& front) const;

  const std::unique_ptr<FrontWindow> window_;
  const Describe describe_;
  SerialQueue& main_;
  const Notices notices_;

  Wish wish_;
  bool isAsked_ = false;
  Front front_;
  std::string candidate_;
  std::map<std::string, AppDescription> described_;  // while the panel asks: it reads many files
  Cause cause_;
  std::shared_ptr<const bool> following_;  // while it does; posted reports watch it
};

}  // namespace tobrin
