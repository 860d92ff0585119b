#include "Recording/KeyTimes.h"

#include <gtest/gtest.h>

#include "Base/Key.h"
#include "Recording/KeyNumbers.h"
#include "Support/TempFolder.h"

namespace tobrin {
namespace {

TEST(KeyTimes, TypedKeysAreKeptByNumberAndReadBack) {
  constexpr uint64_t begin = 5'000;
  KeyNumbers numbers(begin);
  std::vector<RecordedKey> keys;
  const auto type = [&](Key key, KeyAction action, uint64_t time) {
    if (const auto kept = numbers.recorded({codeOf(key), action, time}, 1.5f))
      keys.push_back(*kept);
  };
  type(Key::space, KeyAction::up, 4'800);  // held since before the recording
  type(Key::upArrow, KeyAction::down, 4'990);
  type(Key::enter, KeyAction::down, 5'100);
  type(Key::enter, KeyAction::down, 5'200);  // autorepeat
  type(Key::upArrow, KeyAction::up, 5'300);
  type(Key::enter, KeyAction::up, 5'400);
  type(Key::upArrow, KeyAction::down, 5'500);
  ASSERT_EQ(keys.size(), 5u);
  EXPECT_EQ(keys[0].force, 1.5f);
  EXPECT_EQ(keys[2].force, std::nullopt);

  const testing::TempFolder folder;
  const auto file = folder.path() / "k.keys.csv";
  saveKeyTimes(keys, file);
  EXPECT_EQ(testing::contentOf(file),
            "time_ns,action,group,key\n-10,down,alpha,0\n100,down,enter,1\n300,up,alpha,0\n"
            "400,up,enter,1\n500,down,alpha,0\n");
  for (RecordedKey& key : keys)
    key.force.reset();
  EXPECT_EQ(loadKeyTimes(file), keys);
}

}  // namespace
}  // namespace tobrin
