/// Starts the key monitor. Where access to keys is missing it asks the user once, and looks every
/// 1.5 s until keys arrive; where the access is lost later it looks again without asking. Knows
/// when only a new start of the program will help. Thread: main.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "Base/SerialQueue.h"
#include "Input/KeyMonitor.h"

namespace tobrin {

class KeyAccessWatch final {
 public:
  struct State {
    bool hasPermission = false;
    bool listening = false;
    bool needsRelaunch = false;  ///< access was granted, or the program updated, but no keys come
    KeyPause pause = KeyPause::none;  ///< while listening
    bool hearsWhileLocked = true;     ///< while listening

    bool operator==(const State&) const = default;
  };

  /// `monitor` and `main`, the queue of the main thread, are borrowed and outlive this object.
  /// `isUpdated` says whether the program was updated while it runs: the new version's key service
  /// refuses the old program. `onChange` is called whenever the state has changed.
  KeyAccessWatch(KeyMonitor& monitor, SerialQueue& main, std::function<bool()> isUpdated,
                 std::function<void()> onChange);

  /// Listens, or waits for access to do so.
  void start();
  /// Looks at once whether access has been granted.
  void look();
  /// To be called after the monitor has lost its keyboards or has taken them up again, pauses or
  /// goes on.
  void monitorChanged();

  [[nodiscard]] const State& state() const { return state_; }

 private:
  void lookLater();
  void publishListening();
  void publishWaiting(bool granted);
  void publish(const State& state);

  KeyMonitor& monitor_;
  SerialQueue& main_;
  std::function<bool()> isUpdated_;
  std::function<void()> onChange_;

  State state_;
  bool willLook_ = false;
  std::optional<uint64_t> grantedWithoutKeys_;                        // host ticks
  std::shared_ptr<const bool> alive_ = std::make_shared<bool>(true);  // posted looks watch it
};

}  // namespace tobrin
