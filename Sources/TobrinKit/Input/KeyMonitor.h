/// Receives every key press and release of every application on its own thread and hands each one
/// to a handler. Only key code, press or release, and time leave it; it never blocks, alters or
/// records keystrokes. Thread: any.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

#include "Base/KeyEvent.h"
#include "Base/MachTime.h"
#include "Base/Mutex.h"
#include "Input/HeldBackKeyboards.h"
#include "Input/KeySource.h"
#include "Input/ModifierTracker.h"

namespace tobrin {

/// What a key monitor takes from the platform.
struct KeyMonitorOptions {
  /// Called first on the monitor's thread, to name it and to ask for real-time scheduling.
  std::function<void(std::string_view threadName)> onThreadStart = nullptr;
  /// Receives every event of a keyboard after the handler, even those too old for the handler: all
  /// of them are needed to know which keys are held. Called as the handler is.
  std::function<void(const KeyEvent&)> observer = nullptr;
  /// Called when a source in use was lost and when it is open again, and when it pauses or goes on:
  /// whenever `isRunning`, `pause` or `goesOnWhileLocked` changes by itself. Thread: key.
  std::function<void()> onChange = nullptr;
  /// The clock events are stamped with on delivery, in `MachTime` ticks.
  std::function<uint64_t()> now = &machNow;
  /// The first pause before a lost source is opened again; doubles up to `longestRetry`.
  std::chrono::milliseconds firstRetry{250};
  std::chrono::milliseconds longestRetry{4000};
};

class KeyMonitor final {
 public:
  static constexpr std::string_view threadName = "Tobrin.KeyMonitor";
  /// A backlog after a stall would play as a burst: the handler gets no events older than this.
  static constexpr double staleMs = 250;

  /// Called on the monitor's thread, one event at a time; must return quickly.
  using Handler = std::function<void(const KeyEvent&)>;

  KeyMonitor(std::unique_ptr<KeySource> source, Handler handler, KeyMonitorOptions options = {});
  ~KeyMonitor();
  KeyMonitor(const KeyMonitor&) = delete;
  KeyMonitor& operator=(const KeyMonitor&) = delete;

  /// Starts listening; true if it does or already did. False where the source cannot open (no
  /// permission, no keyboards to be had): nothing then runs, and the caller may try again later.
  /// Waits until the source is open. Not to be called on the monitor's thread.
  bool start();

  /// When it returns, the handler's last call has ended. Which modifiers are held is remembered.
  /// Not to be called on the monitor's thread.
  void stop();

  /// Nothing that keyboards with these names send is handed on, to handler or observer.
  void holdBack(const HeldBackKeyboards::Names& names) { heldBack_.set(names); }

  /// Whether keys are heard now; false while a lost source is being waited for.
  [[nodiscard]] bool isRunning() const { return running_.load(std::memory_order_acquire); }

  void hearMouse(MouseHearing wish) { source_->hearMouse(wish); }
  [[nodiscard]] bool canHearMouse() const { return source_->canHearMouse(); }
  [[nodiscard]] KeyPause pause() const { return source_->pause(); }
  [[nodiscard]] bool goesOnWhileLocked() const { return source_->goesOnWhileLocked(); }
  [[nodiscard]] bool hasPermission() const { return source_->hasPermission(); }
  bool requestPermission() { return source_->requestPermission(); }
  [[nodiscard]] bool canGiveBackPermission() const { return source_->canGiveBackPermission(); }
  [[nodiscard]] std::string problem() const { return source_->problem(); }
  [[nodiscard]] std::string description() const { return source_->description(); }

 private:
  void run(std::promise<bool> opened);
  bool openAgain();
  bool stopsWithin(std::chrono::milliseconds time);
  void handle(const KeySource::Event& event);
  void endThread() TOBRIN_REQUIRES(control_);

  // fixed after construction
  const std::unique_ptr<KeySource> source_;
  const Handler handler_;
  const KeyMonitorOptions options_;

  ModifierTracker modifiers_;         // monitor thread
  HeldBackKeyboards heldBack_;        // monitor thread, but for its names
  std::atomic<bool> running_{false};  // written by the monitor thread

  Mutex control_;  // serialises start and stop
  std::thread thread_ TOBRIN_GUARDED_BY(control_);

  std::mutex stopMutex_;  // a plain one, for the condition
  std::condition_variable stopChanged_;
  bool stopping_ = false;  // guarded by stopMutex_
};

}  // namespace tobrin
