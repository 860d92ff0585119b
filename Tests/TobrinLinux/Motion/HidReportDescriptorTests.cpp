#include "Motion/HidReportDescriptor.h"

#include <gtest/gtest.h>

#include <vector>

namespace tobrin {
namespace {

using Bytes = std::vector<uint8_t>;

Bytes join(std::initializer_list<Bytes> parts) {
  Bytes all;
  for (const Bytes& part : parts)
    all.insert(all.end(), part.begin(), part.end());
  return all;
}

const Bytes motion = {0x06, 0x00, 0xff, 0x09, 0x03, 0xa1, 0x01};  // page 0xFF00, usage 3
const Bytes keyboard = {0x05, 0x01, 0x09, 0x06, 0xa1, 0x01};
const Bytes end = {0xc0};
const Bytes numbered = {0x85, 0x07};

Bytes input(uint8_t bytes) {
  return {0x75, 0x08, 0x95, bytes, 0x81, 0x02};
}

TEST(HidReportDescriptor, FindsTheMotionReportOfTheRightCollection) {
  struct {
    const char* label;
    Bytes descriptor;
    std::optional<HidMotionReport> expected;
  } const rows[] = {
      {"plain", join({motion, input(22), end}), {{0, 22, 0}}},
      {"in several fields", join({motion, input(6), input(16), end}), {{0, 22, 0}}},
      {"numbered", join({motion, numbered, input(22), end}), {{7, 23, 1}}},
      {"number counted in", join({motion, numbered, input(21), end}), {{7, 22, 0}}},
      {"among other reports",
       join({motion, {0x85, 0x01}, input(8), numbered, input(22), end}),
       {{7, 23, 1}}},
      {"behind a keyboard", join({keyboard, input(8), end, motion, input(22), end}), {{0, 22, 0}}},
      {"usage of four bytes",
       join({{0x0b, 0x03, 0x00, 0x00, 0xff, 0xa1, 0x01}, input(22), end}),
       {{0, 22, 0}}},
      {"page restored by pop",
       join({{0x06, 0x00, 0xff, 0xa4, 0x05, 0x01, 0xb4, 0x09, 0x03, 0xa1, 0x01}, input(22), end}),
       {{0, 22, 0}}},
      {"after a long item",
       join({{0xfe, 0x02, 0x00, 0xa1, 0xa1}, motion, input(22), end}),
       {{0, 22, 0}}},
      {"another length", join({motion, input(23), end}), {}},
      {"another usage", join({{0x06, 0x00, 0xff, 0x09, 0x04, 0xa1, 0x01}, input(22), end}), {}},
      {"only nested in a keyboard", join({keyboard, motion, input(22), end, end}), {}},
      {"outside of any collection", join({{0x06, 0x00, 0xff, 0x09, 0x03}, input(22)}), {}},
      {"feature report", join({motion, {0x75, 0x08, 0x95, 22, 0xb1, 0x02}, end}), {}},
      {"empty", {}, {}},
  };
  for (const auto& row : rows)
    EXPECT_EQ(findMotionReport(row.descriptor), row.expected) << row.label;
}

TEST(HidReportDescriptor, CutShortAnywhereItFindsNothingOrTheSame) {
  const Bytes whole = join({{0xfe, 0xff}, motion, numbered, input(22), end});
  for (std::size_t length = 0; length <= whole.size(); ++length)
    (void)findMotionReport(std::span(whole).first(length));
  const Bytes plain = join({motion, numbered, input(22), end});
  for (std::size_t length = 0; length + 2 < plain.size(); ++length)
    EXPECT_FALSE(findMotionReport(std::span(plain).first(length))) << length;
}

}  // namespace
}  // namespace tobrin
