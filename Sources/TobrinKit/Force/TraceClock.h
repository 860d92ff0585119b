/// The clock that a trace is played by: the real one, or one that a driver moves by hand. A clock
/// serves one source, on whose thread `sleepUntil` waits. Thread: any.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace tobrin {

class TraceClock {
 public:
  virtual ~TraceClock() = default;

  /// The present in `MachTime` ticks.
  [[nodiscard]] virtual uint64_t now() const = 0;

  /// Waits until `time`; false where `interrupt` ended the wait or came before it.
  [[nodiscard]] virtual bool sleepUntil(uint64_t time) = 0;

  /// Ends this wait and every later one until `rearm`.
  virtual void interrupt() = 0;
  virtual void rearm() = 0;
};

/// Waits in real time.
class RealTraceClock final : public TraceClock {
 public:
  [[nodiscard]] uint64_t now() const override;
  [[nodiscard]] bool sleepUntil(uint64_t time) override;
  void interrupt() override;
  void rearm() override;

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool interrupted_ = false;  // guarded by mutex_
};

/// Stands still until its driver moves it.
class VirtualTraceClock final : public TraceClock {
 public:
  explicit VirtualTraceClock(uint64_t start) : now_(start) {}

  [[nodiscard]] uint64_t now() const override;
  [[nodiscard]] bool sleepUntil(uint64_t time) override;
  void interrupt() override;
  void rearm() override;

  /// Moves the present to `time` and returns once the source, where one runs, waits for a later
  /// one: everything due has then been handed on. For the driver, which also starts and stops the
  /// source.
  void advanceTo(uint64_t time);

 private:
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  // Guarded by mutex_.
  uint64_t now_;
  uint64_t wanted_ = 0;   // what the source waits for
  bool running_ = false;  // between rearm and interrupt
  bool waiting_ = false;
};

}  // namespace tobrin
