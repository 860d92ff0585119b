/// Keys from the key broker, which alone reads the keyboards: with an administrator's consent, and
/// only while this user's session is in front and not locked. For Wayland and the console. A call
/// to a broker that has ended starts it again. Thread: key.
#pragma once

#include <atomic>
#include <map>
#include <string>

#include "Base/FileDescriptor.h"
#include "Base/Mutex.h"
#include "Evdev/HeldKeys.h"
#include "Evdev/KeyRecord.h"
#include "Input/KeySource.h"
#include "System/WakeEvent.h"

namespace tobrin {

class BrokerKeySource final : public KeySource {
 public:
  bool open() override;
  /// Ends, too, where the access was taken back.
  void run(const Sink& sink) override;
  void close() override;
  void interrupt() override { wake_.raise(); }
  [[nodiscard]] KeyPause pause() const override { return pause_; }
  [[nodiscard]] bool goesOnWhileLocked() const override { return goesOnWhileLocked_; }
  [[nodiscard]] bool hasPermission() const override;
  bool requestPermission() override { return hasPermission(); }
  [[nodiscard]] std::string problem() const override;
  [[nodiscard]] std::string description() const override {
    return "kernel keyboards (tobrin-keys)";
  }

 private:
  bool openAgain();
  bool takePacket(const Sink& sink);
  void take(const KeyRecord& record, const Sink& sink);
  void releaseAll(const Sink& sink);
  void setPause(KeyPause pause, const Sink& sink);
  void setProblem(const std::string& problem);

  WakeEvent wake_;  // any thread

  // key thread
  FileDescriptor stream_;
  std::map<uint32_t, HeldKeys> keyboards_;

  // written by the key thread
  std::atomic<KeyPause> pause_{KeyPause::none};
  std::atomic<bool> goesOnWhileLocked_{false};

  mutable Mutex mutex_;
  std::string problem_ TOBRIN_GUARDED_BY(mutex_);
};

}  // namespace tobrin
