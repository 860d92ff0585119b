/// Picks what to pass on of one keyboard's kernel events: presses and releases of keys. Left out:
/// how long a key repeats, buttons of mice and pads, and the release of a key whose press was not
/// passed on, such as one that was typed at a login prompt. Thread: main.
#pragma once

#include <linux/input.h>

#include <bitset>
#include <cstdint>
#include <vector>

#include "Evdev/KeyRecord.h"

namespace tobrin {

class KeyFilter final {
 public:
  using Keys = std::bitset<KEY_CNT>;

  /// `held`: the keys that are down already.
  KeyFilter(uint32_t keyboard, const Keys& held) : keyboard_(keyboard), held_(held) {}

  /// Appends what is to be passed on of the event. False where the kernel has dropped events: then
  /// `catchUp` is due.
  bool take(const input_event& event, std::vector<KeyRecord>& told);

  /// Appends what changed while events were dropped; `held` is what is down now.
  void catchUp(const Keys& held, uint64_t timeNs, std::vector<KeyRecord>& told);

 private:
  void change(uint16_t code, bool down, uint64_t timeNs, std::vector<KeyRecord>& told);

  const uint32_t keyboard_;
  Keys held_, told_;
  bool dropping_ = false;  // up to the end of the report in which events were lost
};

}  // namespace tobrin
