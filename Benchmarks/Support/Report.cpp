#include "Support/Report.h"

#include <cstdio>
#include <nlohmann/json.hpp>
#include <string_view>
#include <utility>

namespace tobrin {

namespace {

constexpr const char* rowFormat = "%-50s %16s %22s %7s %8s %4s %8s\n";

std::string number(double value) {
  char text[32];
  static_cast<void>(std::snprintf(text, sizeof text,
                                  value < 10     ? "%.2f"
                                  : value < 1000 ? "%.1f"
                                                 : "%.0f",
                                  value));
  return text;
}

std::string percent(double part) {
  char text[32];
  static_cast<void>(std::snprintf(text, sizeof text, "%.1f %%", 100 * part));
  return text;
}

constexpr double microseconds = 1e6;

}  // namespace

Figure Figure::faster(std::string name, const Timing& ours, std::string peer, const Timing& theirs,
                      double times) {
  return {.name = std::move(name),
          .measured = ours.median * microseconds,
          .unit = "us",
          .peer = std::move(peer),
          .peerValue = theirs.median * microseconds,
          .ratio = theirs.median / ours.median,
          .goal = Goal::atLeast,
          .goalRatio = times,
          .spread = ours.spread};
}

Figure Figure::under(std::string name, double measured, std::string unit, double limit,
                     double spread) {
  return {.name = std::move(name),
          .measured = measured,
          .unit = std::move(unit),
          .peer = {},
          .peerValue = limit,
          // A limit of 0 has no parts.
          .ratio = limit > 0 ? measured / limit : measured,
          .goal = Goal::atMost,
          .goalRatio = limit > 0 ? 1.0 : 0.0,
          .spread = spread};
}

Figure Figure::over(std::string name, double measured, std::string unit, double limit,
                    double spread) {
  Figure figure = under(std::move(name), measured, std::move(unit), limit, spread);
  figure.goal = Goal::atLeast;
  return figure;
}

Report::Report(int argc, const char* const* argv) {
  bool heading = true;
  for (int i = 1; i < argc; ++i) {
    json_ = json_ || std::string_view(argv[i]) == "--json";
    heading = heading && std::string_view(argv[i]) != "--rows";
  }
  if (heading && !json_) printHeading();
}

void Report::printHeading() const {
  std::printf(rowFormat, "figure", "measured", "peer or limit", "ratio", "goal", "met", "spread");
}

void Report::add(const Figure& figure) {
  allMet_ = allMet_ && figure.met();
  if (json_) {
    const nlohmann::json document = {
        {"figure", figure.name},         {"measured", figure.measured},
        {"unit", figure.unit},           {"peer", figure.peer.empty() ? "limit" : figure.peer},
        {"peerValue", figure.peerValue}, {"ratio", figure.ratio},
        {"goal", figure.goalRatio},      {"atLeast", figure.goal == Figure::Goal::atLeast},
        {"met", figure.met()},           {"spread", figure.spread}};
    std::printf("%s\n", document.dump().c_str());
  } else {
    const std::string peer = figure.peer.empty() ? "limit" : figure.peer;
    const std::string goal =
        (figure.goal == Figure::Goal::atLeast ? ">= " : "<= ") + number(figure.goalRatio);
    std::printf(rowFormat, figure.name.c_str(),
                (number(figure.measured) + " " + figure.unit).c_str(),
                (peer + " " + number(figure.peerValue) + " " + figure.unit).c_str(),
                number(figure.ratio).c_str(), goal.c_str(), figure.met() ? "yes" : "NO",
                percent(figure.spread).c_str());
  }
  static_cast<void>(std::fflush(stdout));
}

}  // namespace tobrin
