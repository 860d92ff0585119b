/// Reads every keyboard of this seat straight from the kernel: all at once, plugged in or taken
/// away at any time, the virtual keyboards of remappers too. For Wayland, where the display server
/// gives keys to the focused window only, and for the console. Needs the right to read the devices
/// (on Debian the group "input"). Never grabs a device; a keyboard that a remapper has grabbed
/// sends nothing here, so that no key comes twice. Thread: key.
#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "Base/Mutex.h"
#include "Evdev/Keyboard.h"
#include "Evdev/KeyboardList.h"
#include "Evdev/MouseWish.h"
#include "Evdev/SeatWatch.h"
#include "Input/KeySource.h"
#include "System/WakeEvent.h"

struct pollfd;

namespace tobrin {

class EvdevKeySource final : public KeySource {
 public:
  EvdevKeySource();
  ~EvdevKeySource() override;

  /// False where there are keyboards and none may be read. Without any keyboard it waits for one.
  bool open() override;
  /// Ends, too, once there are keyboards and none may be read any more.
  void run(const Sink& sink) override;
  void close() override;
  void interrupt() override;
  [[nodiscard]] KeyPause pause() const override {
    return isOurs_ ? KeyPause::none : KeyPause::inBackground;
  }
  void hearMouse(MouseHearing wish) override { mouse_.set(wish); }
  /// Where there are mice and none may be read, it cannot.
  [[nodiscard]] bool canHearMouse() const override;
  [[nodiscard]] bool hasPermission() const override;
  /// Nobody can be asked: an administrator grants it.
  bool requestPermission() override { return hasPermission(); }
  [[nodiscard]] std::string problem() const override;
  [[nodiscard]] std::string description() const override { return "kernel keyboards (evdev)"; }

 private:
  struct Watches;

  void setProblem(const std::string& problem);
  void takeUpKeyboards();
  void takeUpMice();
  std::string takeUp(const std::vector<std::string>& nodes);
  void followMouseWish(const Sink& sink);
  bool takeKeys(const std::vector<pollfd>& waits, const Sink& sink);
  void dropWhatIsNotOurs(const Sink& sink);
  bool takeSeatChange(const Sink& sink);
  [[nodiscard]] std::vector<pollfd> everythingToWaitFor() const;

  WakeEvent wake_;   // any thread
  MouseWish mouse_;  // any thread

  // key thread
  std::unique_ptr<Watches> watches_;                  // while open
  std::vector<std::unique_ptr<Keyboard>> keyboards_;  // and mice, while they are wished for
  bool refused_ = false;            // of the keyboards there are, not one may be read
  std::atomic<bool> isOurs_{true};  // whether our user sits at the keyboards; any thread reads it

  mutable Mutex mutex_;
  std::string problem_ TOBRIN_GUARDED_BY(mutex_);
};

}  // namespace tobrin
