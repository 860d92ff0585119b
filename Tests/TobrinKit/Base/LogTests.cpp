#include "Base/Log.h"

#include <gtest/gtest.h>

namespace tobrin {
namespace {

TEST(Log, GoesToStandardErrorUnlessSomebodyTakesIt) {
  std::string taken;
  ::testing::internal::CaptureStderr();
  logLine("one");
  setLogSink([&](const std::string& line) { taken += line; });
  logLine("two");
  setLogSink(nullptr);
  logLine("%s");
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Tobrin: one\nTobrin: %s\n");
  EXPECT_EQ(taken, "Tobrin: two");
}

}  // namespace
}  // namespace tobrin
