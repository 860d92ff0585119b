#include "Recording/KeyTimes.h"

#include <gtest/gtest.h>

#include "Base/Key.h"
#include "Recording/KeyNumbers.h"
#include "Support/Failure.h"
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

TEST(KeyTimes, MalformedFilesAreNamedWithFileAndLine) {
  testing::expectRefusals(
      [](const std::string& lines) {
        return parseKeyTimes("time_ns,action,group,key\n" + lines, "K");
      },
      {{"1,down,alpha\n", "K:2: expected 4 fields"},
       {"1.5,down,alpha,0\n", "K:2: time_ns is no whole number"},
       {"1,press,alpha,0\n", "K:2: action is neither"},
       {"1,down,Alpha,0\n", "K:2: there is no such group"},
       {"1,down,alpha,-1\n", "K:2: key is no whole number"},
       {"1,down,alpha,1\n", "K:2: keys are numbered from 0"},
       {"1,up,alpha,0\n", "K:2: the key is up already"},
       {"1,down,alpha,0\n2,down,alpha,0\n", "K:3: the key is down already"},
       {"2,down,alpha,0\n1,up,alpha,0\n", "K:3: the time goes back"},
       {"1,down,alpha,0\n2,up,space,0\n", "K:3: the key was in another group"}});
}

}  // namespace
}  // namespace tobrin
