/// Validators of numbers on the command line.
#pragma once

#include <CLI/CLI.hpp>
#include <cmath>
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

}  // namespace tobrin
