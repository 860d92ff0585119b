/// Validators of numbers on the command line. Thread: any.
#pragma once

#include <CLI/CLI.hpp>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <sstream>

namespace tobrin {

/// Accepts finite numbers from `low` to `high`; anything else is wrong usage.
inline CLI::Validator numberFrom(double low, double high) {
  std::ostringstream range;
  range << "a number from " << low << " to " << high;
  const std::string wanted = range.str();
  const auto check = [low, high, wanted](const std::string& text) {
    double value = 0;
    const bool fits = CLI::detail::lexical_cast(text, value) && std::isfinite(value) &&
                      value >= low && value <= high;
    return fits ? std::string() : "must be " + wanted + ", not " + text;
  };
  return {check, std::string(), "number range"};
}

/// Accepts whole numbers of 64 bits; the parser itself would wrap -1 and cut what is too large.
inline CLI::Validator wholeNumber() {
  const auto check = [](const std::string& text) {
    uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    const bool fits = error == std::errc() && end == text.data() + text.size();
    return fits ? std::string() : "must be a whole number from 0 to 2^64 - 1, not " + text;
  };
  return {check, std::string(), "whole number"};
}

}  // namespace tobrin
