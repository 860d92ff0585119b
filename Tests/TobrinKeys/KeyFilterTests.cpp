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
  KeyFilter filter(1, held);
  std::vector<KeyRecord> records;
  for (const Input& input : events) {
    input_event event{};
    event.type = input.type;
    event.code = input.code;
    event.value = input.value;
    if (!filter.take(event, records)) filter.catchUp(heldNow, 0, records);
  }
  std::string text;
  for (const KeyRecord& record : records)
    text += (record.kind == KeyRecord::Kind::press ? "+" : "-") + std::to_string(record.code) + " ";
  return text;
}

TEST(KeyFilter, TellsPressesAndTheirReleasesAndNothingElse) {
  const Input press{EV_KEY, KEY_A, 1}, release{EV_KEY, KEY_A, 0};
  EXPECT_EQ(told({}, {press, {EV_KEY, KEY_A, 2}, release, release}), "+30 -30 ");
  EXPECT_EQ(told({}, {{EV_MSC, MSC_SCAN, 4}, {EV_KEY, BTN_LEFT, 1}, {EV_KEY, KEY_FN, 1}}), "+464 ");
  EXPECT_EQ(told({}, {press, press, release}), "+30 +30 -30 ") << "a release that another took";
  KeyFilter::Keys a, b;
  a.set(KEY_A);
  b.set(KEY_B);
  EXPECT_EQ(told(a, {release, press}), "+30 ") << "typed before";

  // Some are lost: all up to the report's end does not count, then the keys that are down do.
  const Input lost{EV_SYN, SYN_DROPPED, 0}, end{EV_SYN, SYN_REPORT, 0};
  EXPECT_EQ(told({}, {press, lost, release, press, end, {EV_KEY, KEY_B, 0}}, b),
            "+30 -30 +48 -48 ");
  EXPECT_EQ(told(a, {lost, end, release}, a), "") << "still down";
}

}  // namespace
}  // namespace tobrin
