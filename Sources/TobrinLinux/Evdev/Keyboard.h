/// One keyboard or mouse of the kernel, opened for reading and never grabbed. How a mouse moves
/// never reaches this program. Thread: key.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "Base/FileDescriptor.h"
#include "Evdev/HeldKeys.h"
#include "Input/KeySource.h"

struct libevdev;

namespace tobrin {

class Keyboard final {
 public:
  /// Opens a device node; nothing where that fails, with the reason in `error` (an errno).
  static std::unique_ptr<Keyboard> open(const std::string& node, int& error);
  ~Keyboard();
  Keyboard(const Keyboard&) = delete;
  Keyboard& operator=(const Keyboard&) = delete;

  /// To poll for reading.
  [[nodiscard]] int fd() const { return file_.get(); }
  [[nodiscard]] const std::string& node() const { return node_; }

  /// Mouse buttons are left out until this asks for them, even on a keyboard that has some.
  void hearMouse(MouseHearing hearing);

  /// Hands on all that has come in; false once the keyboard is gone (which a read shows before the
  /// hotplug service does).
  bool takeAll(const KeySource::Sink& sink);

  /// Releases what is still held on it.
  void releaseAll(const KeySource::Sink& sink);

 private:
  Keyboard(std::string node, FileDescriptor file, libevdev* device);
  void turnWheel(std::optional<uint64_t> time, const KeySource::Sink& sink) const;

  const std::string node_;
  const FileDescriptor file_;
  libevdev* const device_;  // owned
  bool monotonic_ = false;  // whether the kernel stamps on our clock
  HeldKeys held_;
  MouseHearing mouse_ = MouseHearing::nothing;
};

}  // namespace tobrin
