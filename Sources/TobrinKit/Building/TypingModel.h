/// How somebody types on a recording, learned from the recording: how loud presses and releases are
/// against the presses around them, how long keys are held, and how fast presses follow each other.
/// Thread: any.
#pragma once

#include <vector>

namespace tobrin {

/// A bell curve with the heavy tails of Student's distribution, so that no single stray value is
/// proof of anything. Fitted by median and median absolute deviation for the same reason.
struct Bell {
  double mean = 0;
  double deviation = 1;

  [[nodiscard]] double logDensity(double x) const;

  /// Fits `values`, drawn towards `expected` as if that had been seen `weight` times already; the
  /// deviation is at least `leastDeviation`.
  static Bell fit(std::vector<double> values, const Bell& expected, double weight,
                  double leastDeviation);
};

/// One hit as far as the model is concerned.
struct TypedHit {
  double time = 0;        ///< s
  double relativeDb = 0;  ///< level against the presses around it
  bool isBeside = false;  ///< hardly apart from a louder hit: perhaps a touch or a bounce
};

struct TypingModel {
  Bell pressDb{0, 4};
  Bell releaseDb{-10, 4};
  Bell strayDb{-15, 7};         ///< knocks, residue, releases of presses that were not heard
  Bell partDb{-8, 5};           ///< touches and bounces of keys
  Bell logHold{-2.4, 0.35};     ///< natural logarithm of seconds; about 90 ms
  Bell logInterval{-1.7, 0.5};  ///< from press to press; about 180 ms
  double heardReleases = 0.7;   ///< share of presses whose release is heard
  double straysASecond = 0.2;
  double partsBeside = 0.3;  ///< share of the hits beside louder ones that are parts of those

  static constexpr double longestInterval = 2.0;  ///< s; a longer one is a pause

  /// What one hit is: the index of the press it releases, or one of these.
  static constexpr int isPress = -1;
  static constexpr int isStray = -2;
  using Assignment = std::vector<int>;

  /// The model that fits an assignment best, drawn a little towards this one.
  [[nodiscard]] TypingModel fitted(const std::vector<TypedHit>& hits,
                                   const Assignment& assignment) const;
};

}  // namespace tobrin
