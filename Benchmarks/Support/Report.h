#pragma once

#include <string>
#include <vector>

#include "Support/Interleaved.h"

namespace tobrin {

/// One measured figure beside its goal. Quantities are in `unit`, ratios have none.
struct Figure {
  enum class Goal { atLeast, atMost };

  std::string name;
  double measured = 0;
  std::string unit;      ///< "us", "ns", "x real time", ...
  std::string peer;      ///< what it is compared with; empty for a plain limit
  double peerValue = 0;  ///< the peer's figure, or the limit
  double ratio = 0;      ///< what the goal is about
  Goal goal = Goal::atLeast;
  double goalRatio = 0;
  double spread = 0;  ///< of the measured figure, as a part of it

  [[nodiscard]] bool met() const {
    return goal == Goal::atLeast ? ratio >= goalRatio : ratio <= goalRatio;
  }

  /// Our time must be at least `times` shorter than the peer's. Shown in microseconds.
  static Figure faster(std::string name, const Timing& ours, std::string peer, const Timing& theirs,
                       double times);

  /// A quantity that stays at or under a limit; the ratio is the quantity's part of it, or the
  /// quantity where the limit is 0.
  static Figure under(std::string name, double measured, std::string unit, double limit,
                      double spread);

  /// A quantity that reaches at least a limit.
  static Figure over(std::string name, double measured, std::string unit, double limit,
                     double spread);
};

/// Prints figures as they come: a table, or one JSON document a line with `--json`. `--rows` leaves
/// out the table's heading, for programs whose tables are joined.
class Report final {
 public:
  Report(int argc, const char* const* argv);
  void add(const Figure& figure);

  /// The program's exit status: 1 where a goal was missed.
  [[nodiscard]] int status() const { return allMet_ ? 0 : 1; }

 private:
  void printHeading() const;

  bool json_ = false;
  bool allMet_ = true;
};

}  // namespace tobrin
