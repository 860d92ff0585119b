/// Keys of the kernel's devices for Wayland and the console: straight from the devices where this
/// user may read them, else from the key broker. Thread: key.
#pragma once

#include <atomic>

#include "Evdev/BrokerKeySource.h"
#include "Evdev/EvdevKeySource.h"

namespace tobrin {

class DeviceKeySource final : public KeySource {
 public:
  bool open() override;
  void run(const Sink& sink) override { used_.load()->run(sink); }
  void close() override;
  void interrupt() override;
  [[nodiscard]] KeyPause pause() const override { return used_.load()->pause(); }
  [[nodiscard]] bool goesOnWhileLocked() const override {
    return used_.load()->goesOnWhileLocked();
  }
  /// The key broker reads no mice.
  void hearMouse(MouseHearing wish) override { direct_.hearMouse(wish); }
  [[nodiscard]] bool canHearMouse() const override {
    return used_ == &direct_ && direct_.canHearMouse();
  }
  [[nodiscard]] bool hasPermission() const override;
  bool requestPermission() override { return hasPermission(); }
  [[nodiscard]] bool canGiveBackPermission() const override;
  [[nodiscard]] std::string problem() const override;
  [[nodiscard]] std::string description() const override { return used_.load()->description(); }

 private:
  EvdevKeySource direct_;
  BrokerKeySource broker_;
  std::atomic<KeySource*> used_{&direct_};  // written by the key thread
};

}  // namespace tobrin
