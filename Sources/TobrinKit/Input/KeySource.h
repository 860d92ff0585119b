/// The keyboards as the key monitor takes them: presses, releases and changes of modifier keys, of
/// every application, received and never altered. Implemented once for each way to receive them.
/// Thread: key.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "Input/KeyPause.h"

namespace tobrin {

/// What is to be heard of the mouse.
enum class MouseHearing : uint8_t { nothing, buttons, buttonsAndWheel };

class KeySource {
 public:
  enum class EventType : uint8_t { keyDown, keyUp, flagsChanged, pauseChanged };

  struct Event {
    EventType type = EventType::keyDown;
    uint16_t code = 0;        ///< virtual key code
    bool autorepeat = false;  ///< of a `keyDown`: the key was held, not struck
    uint32_t flags = 0;       ///< modifier keys held after the event, as bits of `ModifierTracker`
    /// When it happened, by the kernel or the display server, in `MachTime` ticks; nothing where
    /// their clock cannot be trusted.
    std::optional<uint64_t> time = {};
    /// What the keyboard calls itself, as long as the event is handed on; empty where that is not
    /// known.
    std::string_view keyboard = {};
  };

  /// Receives one event on the thread that called `run`.
  using Sink = std::function<void(const Event&)>;

  virtual ~KeySource() = default;

  /// Starts to listen; false leaves the reason in `problem`. Thread: key.
  virtual bool open() = 0;

  /// Hands events to `sink` until `interrupt`, or until the source is lost; then `problem`
  /// says why and the source may be closed and opened again. Keyboards that come and go are the
  /// source's own business. No wake-ups while nobody types. Thread: key.
  virtual void run(const Sink& sink) = 0;

  /// Stops listening, if it does; forgets an `interrupt`. Thread: key, or the one that has ended
  /// the key thread.
  virtual void close() = 0;

  /// Ends a `run`, even one that has not begun yet; in force until `close`. Thread: any.
  virtual void interrupt() = 0;

  /// Why no keys come for now although `run` goes on; an event `pauseChanged` says that this or
  /// `goesOnWhileLocked` has changed. Thread: any.
  [[nodiscard]] virtual KeyPause pause() const { return KeyPause::none; }

  /// Whether keys come while the session is locked, too. Thread: any.
  [[nodiscard]] virtual bool goesOnWhileLocked() const { return true; }

  /// Chooses what of the mouse comes as keys do: presses and releases of buttons, with the codes of
  /// `MouseButton`, and each notch of the wheel as a press. No wake-ups while the mouse is not
  /// used. Thread: any.
  virtual void hearMouse(MouseHearing) {}
  /// Whether a mouse can be heard here. Thread: any.
  [[nodiscard]] virtual bool canHearMouse() const { return false; }

  /// Whether the user lets this program hear the keyboards. Thread: any.
  [[nodiscard]] virtual bool hasPermission() const = 0;

  /// Asks for that permission where the desktop has a way to ask; whether it is there now.
  /// Thread: any.
  virtual bool requestPermission() = 0;

  /// Whether that permission was given to this program by its user and can be given back. Thread:
  /// any.
  [[nodiscard]] virtual bool canGiveBackPermission() const { return false; }

  /// Why `open` failed or what ended `run`, in words; empty while all is well. Thread: any.
  [[nodiscard]] virtual std::string problem() const = 0;

  /// What the keys are heard through, for people. Thread: any.
  [[nodiscard]] virtual std::string description() const = 0;
};

}  // namespace tobrin
