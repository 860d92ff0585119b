// Any events of a keyboard: the broker passes on no release without its press, and no record, from
// these events or any other, harms Tobrin.
#include <set>

#include "Evdev/HeldKeys.h"
#include "FuzzInput.h"
#include "KeyFilter.h"

using namespace tobrin;

namespace {

void listen(const KeyRecord& record, std::set<uint16_t>& down, HeldKeys& held) {
  const bool isPress = record.kind == KeyRecord::Kind::press;
  fuzz::require(isPress || down.erase(record.code) == 1);
  if (isPress) down.insert(record.code);
  const auto change = isPress ? HeldKeys::Change::press : HeldKeys::Change::release;
  (void)held.take(record.code, change, record.timeNs);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  KeyFilter::Keys keys(input.take<uint64_t>());
  KeyFilter filter(0, keys);
  HeldKeys held;
  std::set<uint16_t> down;
  while (!input.empty()) {
    input_event event{};
    event.type = input.take<uint8_t>() % 6;
    event.code = input.take<uint16_t>();
    event.value = input.take<uint8_t>() % 4;
    std::vector<KeyRecord> told;
    if (!filter.take(event, told)) filter.catchUp(keys ^= input.take<uint64_t>(), 0, told);
    for (const KeyRecord& record : told)
      listen(record, down, held);
    (void)held.take(event.code, HeldKeys::Change::press, 0);
  }
  return 0;
}
