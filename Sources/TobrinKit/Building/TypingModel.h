/// How somebody types on a recording, learned from the recording: how loud presses and releases are
/// against the presses around them, how long keys are held, and how fast presses follow each other.
#pragma once

#include <vector>

namespace tobrin {

/// A normal distribution, fitted by median and median absolute deviation, which stray values and
/// wrong assignments hardly move.
struct Normal {
  double mean = 0;
  double deviation = 1;

  [[nodiscard]] double logDensity(double x) const;

  /// `fallback` where there are too few values; no deviation below `leastDeviation`.
  static Normal fit(std::vector<double> values, const Normal& fallback, double leastDeviation);
};

/// One hit as far as the model is concerned.
struct TypedHit {
  double time = 0;        ///< s
  double relativeDb = 0;  ///< level against the presses around it
};

struct TypingModel {
  Normal pressDb{0, 3.5};
  Normal releaseDb{-10, 3.5};
  Normal logHold{-2.4, 0.4};      ///< natural logarithm of seconds; about 90 ms
  Normal logInterval{-1.7, 0.6};  ///< from press to press; about 180 ms
  double heardReleases = 0.7;     ///< share of presses whose release is heard

  /// What became of one hit: the index of the press it releases, or `isPress`.
  static constexpr int isPress = -1;
  using Assignment = std::vector<int>;

  /// The likeliest assignment of all hits together, by beam search over which keys are held; its
  /// logarithmic likelihood in `score`. `doubt` is taken off for every release, so that only the
  /// surer ones are read as such.
  struct Reading {
    Assignment assignment;
    double score = 0;
  };
  [[nodiscard]] Reading read(const std::vector<TypedHit>& hits, double doubt = 0) const;

  /// The model that fits an assignment best.
  [[nodiscard]] TypingModel fitted(const std::vector<TypedHit>& hits,
                                   const Assignment& assignment) const;
};

}  // namespace tobrin
