/// Long texts that must stay as they are, kept in files beside the tests.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "Support/TempFolder.h"
#include "TestPaths.h"

namespace tobrin::testing {

/// As `printf`, for a line of such a text.
template <typename... Values>
std::string line(const char* format, Values... values) {
  char text[256];
  (void)std::snprintf(text, sizeof text, format, values...);
  return text;
}

/// Compares line by line with a file below Tests/ and shows the first line that differs. With
/// TOBRIN_RENEW in the environment it writes the file instead (Docs/TESTING.md).
inline void expectKeptText(const std::string& text, const std::string& name) {
  const std::filesystem::path file = std::filesystem::path(TOBRIN_TESTS) / name;
  if (std::getenv("TOBRIN_RENEW") != nullptr) std::ofstream(file, std::ios::binary) << text;
  std::istringstream kept(contentOf(file)), found(text);
  std::string keptLine, foundLine;
  for (int line = 1; kept || found; ++line) {
    if (!std::getline(kept, keptLine)) keptLine = "(no more lines)";
    if (!std::getline(found, foundLine)) foundLine = "(no more lines)";
    ASSERT_EQ(foundLine, keptLine) << name << ", line " << line;
  }
}

}  // namespace tobrin::testing
