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
  const std::pair<Bytes, std::optional<HidMotionReport>> rows[] = {
      {join({motion, input(6), input(16), end}), {{0, 22, 0}}},
      {join({motion, numbered, input(22), end}), {{7, 23, 1}}},
      {join({motion, numbered, input(21), end}), {{7, 22, 0}}},  // its number counted in
      {join({motion, {0x85, 0x01}, input(8), numbered, input(22), end}), {{7, 23, 1}}},
      {join({keyboard, input(8), end, motion, input(22), end}), {{0, 22, 0}}},
      // The usage in four bytes, a page restored by a pop, a long item before.
      {join({{0x0b, 0x03, 0x00, 0x00, 0xff, 0xa1, 0x01}, input(22), end}), {{0, 22, 0}}},
      {join({{0x06, 0x00, 0xff, 0xa4, 0x05, 0x01, 0xb4, 0x09, 0x03, 0xa1, 0x01}, input(22), end}),
       {{0, 22, 0}}},
      {join({{0xfe, 0x02, 0x00, 0xa1, 0xa1}, motion, input(22), end}), {{0, 22, 0}}},
      // Another length, another usage, in a keyboard, in no collection, no input.
      {join({motion, input(23), end}), {}},
      {join({{0x06, 0x00, 0xff, 0x09, 0x04, 0xa1, 0x01}, input(22), end}), {}},
      {join({keyboard, motion, input(22), end, end}), {}},
      {join({{0x06, 0x00, 0xff, 0x09, 0x03}, input(22)}), {}},
      {join({motion, {0x75, 0x08, 0x95, 22, 0xb1, 0x02}, end}), {}},
  };
  for (const auto& [descriptor, expected] : rows)
    EXPECT_EQ(findMotionReport(descriptor), expected) << ::testing::PrintToString(descriptor);
}

TEST(HidReportDescriptor, CutShortAnywhereItFindsNothing) {
  const Bytes plain = join({motion, numbered, input(22), end});
  for (std::size_t length = 0; length + 2 < plain.size(); ++length)
    EXPECT_FALSE(findMotionReport(std::span(plain).first(length))) << length;
}

}  // namespace
}  // namespace tobrin
