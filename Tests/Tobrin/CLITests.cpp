#include "CommandLine/CLI.h"

#include <gtest/gtest.h>

namespace tobrin {
namespace {

TEST(CLI, ReadsSeconds) {
  struct Row {
    const char* text;
    double seconds;
  };
  const Row rows[] = {
      {"5", 5},
      {"0.5", 0.5},
      {"1e1", 10},
      {"abc", 20},
      {"", 20},
      {"5s", 20},
      {" 5", 20},
      {"0", 20},
      {"-3", 20},
      {"inf", 20},
      {"nan", 20},
      {"1e999", 20},
      {"1e12", 365.0 * 24 * 3600},
  };
  for (const Row& row : rows)
    EXPECT_EQ(CLI::seconds(row.text, 20), row.seconds) << '"' << row.text << '"';
  EXPECT_EQ(CLI::seconds(std::nullopt, 20), 20);
}

TEST(CLI, TakesOnlyItsOwnWords) {
  for (const char* word : {"--bogus", "--Help", "help", "", "-hh"})
    EXPECT_EQ(CLI::run({word}), std::nullopt) << word;
  EXPECT_EQ(CLI::run({}), std::nullopt);
}

TEST(CLI, TellsHowItIsUsed) {
  for (const char* word : {"--help", "-h"}) {
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(CLI::run({word}), 0);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(),
              R"(Tobrin, velocity-sensitive keyboard sounds.
  (no arguments)   run the menu-bar app
  --probe [secs]   measure how your keystrokes register on the motion sensor
  --selftest       check key capture, audio engine and sensor (muted)
  --micwatch [secs] show when apps take and release the microphone ("Quiet during calls")
)");
  }
}

}  // namespace
}  // namespace tobrin
