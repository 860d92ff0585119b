/// The sine of partials. Plain arithmetic, without a branch or a table, so that compilers work out
/// several at a time; and the same on every machine, where the libraries' own differ in last bits
/// from one processor to the next. Thread: any.
#pragma once

#include <bit>
#include <cstdint>

namespace tobrin {

/// sin(x), off by less than 5e-16, for |x| < 5e7 radians.
inline double sine(double x) {
  constexpr double inversePi = 0x1.45f306dc9c883p-2;
  // Pi in parts: a product of one of the first two with a whole number below 2^24 is exact.
  constexpr double pi1 = 0x1.921fb54p+1;
  constexpr double pi2 = 0x1.10b4611p-29;
  constexpr double pi3 = 0x1.4c4c6628b80dcp-58;
  constexpr double rounder = 0x1.8p52;  // leaves no room for a fraction in a sum with it
  const double shifted = x * inversePi + rounder;
  const double halfTurns = shifted - rounder;
  const double r = ((x - halfTurns * pi1) - halfTurns * pi2) - halfTurns * pi3;  // within pi / 2
  // The Taylor series; its next term would be below 2e-18.
  constexpr double reciprocalFactorials[] = {-1.0 / 6,
                                             1.0 / 120,
                                             -1.0 / 5040,
                                             1.0 / 362880,
                                             -1.0 / 39916800,
                                             1.0 / 6227020800,
                                             -1.0 / 1307674368000,
                                             1.0 / 355687428096000,
                                             -1.0 / 121645100408832000.0,
                                             1.0 / 51090942171709440000.0};
  const double square = r * r;
  double series = 0;
  for (int term = 9; term >= 0; --term)
    series = series * square + reciprocalFactorials[term];
  const double value = r + r * (square * series);
  // Every other half turn is upside down; the sum's last bit tells which.
  const uint64_t sign = std::bit_cast<uint64_t>(shifted) << 63;
  return std::bit_cast<double>(std::bit_cast<uint64_t>(value) ^ sign);
}

}  // namespace tobrin
