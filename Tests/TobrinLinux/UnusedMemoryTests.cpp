#include "Memory/UnusedMemory.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "Packs/NameOrder.h"

namespace tobrin {
namespace {

/// Resident pages of files, in KiB.
long residentFileKib() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    long kib = 0;
    if (word == "RssFile:" && status >> kib) return kib;
  }
  return 0;
}

TEST(UnusedMemory, IsGivenBackAndComesAgain) {
  const NameOrder order("C");
  const bool before = order.isBefore("Cream 2", "Cream 10");
  const long resident = residentFileKib();
  giveBackUnusedMemory();
  EXPECT_LT(residentFileKib(), resident - 512);
  EXPECT_EQ(order.isBefore("Cream 2", "Cream 10"), before);
}

}  // namespace
}  // namespace tobrin
