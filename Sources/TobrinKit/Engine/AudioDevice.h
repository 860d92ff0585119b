/// The audio platform as the engine needs it: one output of 48 kHz float samples that asks for them
/// by a callback and follows the user's default device, or plays on a chosen one. Implemented once
/// for each sound system. Thread: any.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "Engine/SoundOutputs.h"

namespace tobrin {

/// What a device calls. `render` fills `frames` samples of each channel on the render thread and
/// must be real-time safe; `right` is null or equal to `left` for a mono device. `changed` may come
/// on any thread of the device, never from inside `render` nor with a lock held that `start` or
/// `pause` take: the default device or its format was switched, the sound server was lost, or it
/// came back. The device's destructor waits for it. `outputsChanged` may be empty; it comes on any
/// thread, with any lock held, when the list of devices is first known and after each change, and
/// must only post.
struct AudioCallbacks {
  void (*render)(void* context, float* left, float* right, uint32_t frames) noexcept = nullptr;
  void* context = nullptr;
  std::function<void()> changed;
  std::function<void(const SoundOutputs& outputs)> outputsChanged;
};

class AudioDevice {
 public:
  virtual ~AudioDevice() = default;

  /// Connects if need be and starts calling `render` in blocks of about 256 frames. Returns whether
  /// the stream runs, or is sure to as soon as the server schedules it; false leaves the reason in
  /// `problem`. After a failure or a lost server a started device goes on trying by itself until
  /// `pause`, and calls `changed` when it runs again. The owner calls it from one thread at a time.
  virtual bool start() = 0;

  /// Stops calling `render` and leaves the device idle once it has played what it took: no wake-ups
  /// from then until the next `start`. When it returns, the last callback has ended.
  virtual void pause() = 0;

  /// Whether the stream runs now, as the sound system sees it. Thread: any.
  [[nodiscard]] virtual bool isRunning() const = 0;

  /// Why the last start failed or what was lost, in words; empty while all is well. Thread: any.
  [[nodiscard]] virtual std::string problem() const = 0;

  /// What the sound goes through, for people ("PipeWire, Built-in Audio"). Thread: any.
  [[nodiscard]] virtual std::string description() const = 0;

  /// Plays on the device of this id from now on; empty: on the user's default one, and follows it.
  /// While the chosen device is away the default one stands in. If the user moves the sound with
  /// the desktop's own means, that holds until the next choice. Called as `start` is.
  virtual void choose(const std::string& id) = 0;

  /// Has `outputsChanged` called soon, even if nothing was played yet. Called as `start` is.
  virtual void findOutputs() = 0;

  /// Must be called once, before anything else.
  virtual void setCallbacks(AudioCallbacks callbacks) = 0;
};

}  // namespace tobrin
