#include "KeyFilter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tobrin {
namespace {

struct Input {
  uint16_t type, code;
  int32_t value;
};

/// What is told of the events, as "+30 -30 "; where some were dropped, `heldNow` are the keys down.
std::string told(const KeyFilter::Keys& held, const std::vector<Input>& events,
                 const KeyFilter::Keys& heldNow = {}) {
  constexpr uint64_t now = 2'000'003'000;  // ns
  KeyFilter filter(1, held);
  std::vector<KeyRecord> records;
  for (const Input& input : events) {
    input_event event{};
    event.input_event_sec = 2;
    event.input_event_usec = 3;
    event.type = input.type;
    event.code = input.code;
    event.value = input.value;
    if (!filter.take(event, records)) filter.catchUp(heldNow, now, records);
  }
  std::string text;
  for (const KeyRecord& record : records) {
    EXPECT_EQ(record.timeNs, now);
    EXPECT_EQ(record.keyboard, 1U);
    text += (record.kind == KeyRecord::Kind::press ? "+" : "-") + std::to_string(record.code) + " ";
  }
  return text;
}

TEST(KeyFilter, TellsPressesAndTheirReleasesAndNothingElse) {
  const Input press{EV_KEY, KEY_A, 1}, release{EV_KEY, KEY_A, 0}, repeat{EV_KEY, KEY_A, 2},
      end{EV_SYN, SYN_REPORT, 0};
  static_assert(KEY_2 == SYN_DROPPED);
  EXPECT_EQ(told({}, {press, end, {EV_KEY, KEY_2, 1}, repeat}), "+30 +3 ");
  EXPECT_EQ(told({}, {press, repeat, release, release}), "+30 -30 ");
  EXPECT_EQ(told({}, {{EV_MSC, MSC_SCAN, 1}, {EV_KEY, BTN_LEFT, 1}, {EV_KEY, KEY_FN, 1}}), "+464 ");
  EXPECT_EQ(told({}, {{EV_KEY, KEY_RESERVED, 1},
                      {EV_KEY, BTN_MISC - 1, 1},
                      {EV_KEY, BTN_MISC, 1},
                      {EV_KEY, KEY_OK - 1, 1},
                      {EV_KEY, KEY_OK, 1},
                      {EV_KEY, BTN_TRIGGER_HAPPY, 1}}),
            "+255 +352 ")
      << "the last one before the buttons, and the first one after them";
  EXPECT_EQ(told({}, {press, press, release}), "+30 +30 -30 ") << "a release that another took";
  KeyFilter::Keys a, b;
  a.set(KEY_A);
  b.set(KEY_B);
  EXPECT_EQ(told(a, {release, press}), "+30 ") << "typed before";

  // Some are lost: all up to the report's end does not count, then the keys that are down do.
  const Input lost{EV_SYN, SYN_DROPPED, 0};
  EXPECT_EQ(told({}, {press, lost, release, press, end, {EV_KEY, KEY_B, 0}}, b),
            "+30 -30 +48 -48 ");
  EXPECT_EQ(told(a, {lost, end, release}, a), "") << "still down";
}

}  // namespace
}  // namespace tobrin
