/// The words of failures.
#pragma once

#include <gtest/gtest.h>

#include <exception>
#include <initializer_list>
#include <string>
#include <utility>

namespace tobrin::testing {

/// The text of the exception that `work` throws; "(none)" where it throws none.
template <typename Work>
std::string failureOf(Work work) {
  try {
    work();
  } catch (const std::exception& error) {
    return error.what();
  }
  return "(none)";
}

/// Pairs of a text and what `read` must say in refusing it.
template <typename Read>
void expectRefusals(Read read, std::initializer_list<std::pair<std::string, std::string>> rows) {
  for (const auto& [text, words] : rows) {
    const std::string failure = failureOf([&, &text = text] { (void)read(text); });
    EXPECT_NE(failure.find(words), std::string::npos) << text.substr(0, 100) << ": " << failure;
  }
}

}  // namespace tobrin::testing
