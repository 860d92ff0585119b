/// The access to keys, and what the user does about it: allows it, replaces an older access that
/// other programs have, too, or gives it back. Thread: main.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "Base/SerialQueue.h"
#include "Engine/DesktopServices.h"
#include "Input/KeyMonitor.h"
#include "Model/KeyAccessWatch.h"

namespace tobrin {

class KeyAccess final {
 public:
  /// What it works on; all of it outlives this object.
  struct Services {
    KeyMonitor& monitor;
    SerialQueue& main;
    Workspace& workspace;
    std::function<bool()> keepsWide;  ///< whether the user wants an older access to stay
    std::function<void()> onChange;   ///< anything that is read here may have changed
  };

  explicit KeyAccess(Services services);

  /// Listens, or waits for access to do so.
  void start() { watch_.start(); }
  /// Checks at once what access there is.
  void look();
  /// To be called after the monitor has lost its keyboards or has taken them up again, pauses or
  /// goes on.
  void monitorChanged() { watch_.monitorChanged(); }

  [[nodiscard]] const KeyAccessWatch::State& state() const { return watch_.state(); }
  /// Whether there is access that the user can give back.
  [[nodiscard]] bool canGiveBack() const;
  /// Whether to ask the user to replace an older access, which other programs have too.
  [[nodiscard]] bool offersNarrower() const { return offersNarrower_; }
  /// Why the user's last wish could not be met, else why no keys come although access was given;
  /// empty while nothing went wrong.
  [[nodiscard]] std::string problem() const;

  /// Asks an administrator for access.
  void allow();
  void giveBack();
  void narrow();

 private:
  /// To be called when a wish of the user ends; `failure` begins the sentence for one that failed.
  Workspace::OnEnd settled(const char* failure);
  void lookForWide();

  Services services_;
  KeyAccessWatch watch_;
  bool offersNarrower_ = false;
  std::string problem_;
  std::shared_ptr<const bool> alive_ = std::make_shared<bool>(true);  // wishes that last watch it
};

}  // namespace tobrin
