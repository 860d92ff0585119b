/// A key source driven by a test.
#pragma once

#include <atomic>
#include <string>

#include "Input/KeySource.h"
#include "Support/Script.h"

namespace tobrin::testing {

struct KeyScript : Script<KeySource::Event> {
  void press(uint16_t code) { send({.type = KeySource::EventType::keyDown, .code = code}); }
  void release(uint16_t code) { send({.type = KeySource::EventType::keyUp, .code = code}); }

  std::atomic<bool> allowed = true;  ///< whether this program may listen
  std::atomic<bool> canGiveBack = false;
  std::atomic<int> requests = 0;  ///< for permission

  /// From now on no keys come, or they come again.
  void setPause(KeyPause why) {
    pause = why;
    send({.type = KeySource::EventType::pauseChanged});
  }
  std::atomic<KeyPause> pause = KeyPause::none;
};

class ScriptedKeySource final : public KeySource {
 public:
  explicit ScriptedKeySource(KeyScript& script) : script_(script) {}

  bool open() override { return script_.open() && script_.allowed; }
  void run(const Sink& sink) override { script_.run(sink); }
  void close() override { script_.close(); }
  void interrupt() override { script_.interrupt(); }
  [[nodiscard]] bool hasPermission() const override { return script_.allowed; }
  bool requestPermission() override {
    ++script_.requests;
    return script_.allowed;
  }
  [[nodiscard]] KeyPause pause() const override { return script_.pause; }
  [[nodiscard]] bool canGiveBackPermission() const override { return script_.canGiveBack; }
  [[nodiscard]] std::string problem() const override {
    if (!script_.allowed) return "not allowed";
    return script_.works() ? "" : "no keyboard opens";
  }
  [[nodiscard]] std::string description() const override { return "a script"; }

 private:
  KeyScript& script_;
};

}  // namespace tobrin::testing
