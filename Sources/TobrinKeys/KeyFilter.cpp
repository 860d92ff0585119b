#include "KeyFilter.h"

namespace tobrin {
namespace {

bool isKey(uint16_t code) {
  const bool isButton = code >= BTN_MISC && code < KEY_OK;
  return code > KEY_RESERVED && !isButton && code < BTN_TRIGGER_HAPPY;
}

uint64_t timeOf(const input_event& event) {
  return static_cast<uint64_t>(event.input_event_sec) * 1'000'000'000 +
         static_cast<uint64_t>(event.input_event_usec) * 1'000;
}

}  // namespace

bool KeyFilter::take(const input_event& event, std::vector<KeyRecord>& told) {
  if (event.type == EV_SYN && event.code == SYN_DROPPED) dropping_ = true;
  if (dropping_) {
    dropping_ = event.type != EV_SYN || event.code != SYN_REPORT;
    return dropping_;
  }
  const bool isChange = event.value == 0 || event.value == 1;
  if (event.type == EV_KEY && isChange) change(event.code, event.value == 1, timeOf(event), told);
  return true;
}

void KeyFilter::catchUp(const Keys& held, uint64_t timeNs, std::vector<KeyRecord>& told) {
  const Keys changed = held_ ^ held;
  for (uint16_t code = 0; code < changed.size(); ++code) {
    if (changed[code]) change(code, held[code], timeNs, told);
  }
}

/// A press is passed on even of a key that is held already: its release went to a program that had
/// the keyboard to itself.
void KeyFilter::change(uint16_t code, bool down, uint64_t timeNs, std::vector<KeyRecord>& told) {
  if (!isKey(code)) return;
  held_[code] = down;
  if (!down && !told_[code]) return;
  told_[code] = down;
  told.push_back({.timeNs = timeNs,
                  .keyboard = keyboard_,
                  .code = code,
                  .kind = down ? KeyRecord::Kind::press : KeyRecord::Kind::release});
}

}  // namespace tobrin
