#include "Building/TypingLattice.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <utility>

#include "Base/SplitMix64.h"

namespace tobrin {
namespace {

constexpr double shortestHold = 0.025;  // s
constexpr double longestHold = 1.0;
constexpr std::size_t beamWidth = 24;
constexpr double farBehind = 12;         // of the best state, in log likelihood; not followed
constexpr double mostPartsASecond = 25;  // one within the time that a part may be apart
constexpr std::size_t mostHeld = 4;
constexpr int none = -1;
constexpr double impossible = -std::numeric_limits<double>::infinity();

double logOfSum(double a, double b) {
  const double larger = std::max(a, b);
  return larger == impossible ? impossible : larger + std::log1p(std::exp(std::min(a, b) - larger));
}

/// The density of a time whose logarithm is bell-shaped.
double logTimeDensity(const Bell& logTime, double seconds) {
  const double logSeconds = std::log(std::max(seconds, 1e-3));
  return logTime.logDensity(logSeconds) - logSeconds;
}

/// Which keys are down after a hit, as indices of their presses, oldest first.
struct State {
  std::array<int, mostHeld> held{none, none, none, none};
  int lastPress = none;

  bool operator==(const State&) const = default;

  [[nodiscard]] uint64_t hash() const {
    auto hash = static_cast<uint64_t>(lastPress);
    for (const int press : held)
      hash = (hash ^ (hash >> 32)) * SplitMix64::goldenGamma + static_cast<uint64_t>(press);
    return hash * SplitMix64::goldenGamma;
  }

  [[nodiscard]] std::size_t heldCount() const {
    return static_cast<std::size_t>(std::find(held.begin(), held.end(), none) - held.begin());
  }
  void letGo(std::size_t place) {
    assert(place < mostHeld);
    std::copy(held.begin() + static_cast<std::ptrdiff_t>(place) + 1, held.end(),
              held.begin() + static_cast<std::ptrdiff_t>(place));
    held.back() = none;
  }
};

struct Node {
  State state;
  double forward = impossible;
  double backward = impossible;
};

/// One way from a node of the step before to one of this step.
struct Edge {
  std::size_t from;
  std::size_t to;
  double weight;
  int meaning;
};

struct Step {
  std::vector<Node> nodes;
  std::vector<Edge> edges;
};

/// Where the nodes of one step are, by their states: an open hash table. Looking through all nodes
/// for each edge would take most of the time of a whole slicing.
class Places {
 public:
  /// Forgets all; there will be `most` nodes at the most.
  void clear(std::size_t most) {
    bits_ = static_cast<int>(std::bit_width(most)) + 1;
    table_.assign(std::size_t{1} << bits_, free);
  }

  /// The node with that state, added to `nodes` where there is none yet.
  std::size_t find(const State& state, std::vector<Node>& nodes) {
    auto at = static_cast<std::size_t>(state.hash() >> (64 - bits_));
    while (table_[at] != free && !(nodes[table_[at]].state == state))
      at = (at + 1) % table_.size();
    if (table_[at] == free) {
      table_[at] = nodes.size();
      nodes.push_back({state, impossible, impossible});
    }
    return table_[at];
  }

 private:
  static constexpr auto free = static_cast<std::size_t>(-1);
  int bits_ = 0;
  std::vector<std::size_t> table_;
};

class Lattice {
 public:
  Lattice(const TypingModel& model, const std::vector<TypedHit>& hits)
      : model_(model),
        hits_(hits),
        logHeard_(std::log(model.heardReleases)),
        logUnheard_(std::log(1 - model.heardReleases)),
        logStray_(std::log(model.straysASecond)),
        logPart_(std::log(model.partsBeside * mostPartsASecond)),
        pause_(logTimeDensity(model.logInterval, TypingModel::longestInterval)) {
    steps_.resize(hits.size() + 1);
    steps_[0].nodes.push_back({State(), 0, impossible});
  }

  TypingReading read() {
    for (std::size_t i = 0; i < hits_.size(); ++i)
      advance(i);
    TypingReading reading;
    double total = impossible;
    for (Node& node : steps_.back().nodes) {
      node.backward = static_cast<double>(node.state.heldCount()) * logUnheard_;
      total = logOfSum(total, node.forward + node.backward);
    }
    reading.logLikelihood = total;
    reading.pressChance.resize(hits_.size());
    reading.assignment.resize(hits_.size());
    for (std::size_t i = hits_.size(); i-- > 0;)
      retreat(i, reading);
    return reading;
  }

 private:
  const TypedHit& hit(int index) const { return hits_[static_cast<std::size_t>(index)]; }

  void advance(std::size_t index) {
    const TypedHit& here = hits_[index];
    Step& next = steps_[index + 1];
    timeSince(index);
    const double press = model_.pressDb.logDensity(here.relativeDb);
    const double release = logHeard_ + model_.releaseDb.logDensity(here.relativeDb);
    const double stray = here.isBeside ? logPart_ + model_.partDb.logDensity(here.relativeDb)
                                       : logStray_ + model_.strayDb.logDensity(here.relativeDb);
    const auto& nodes = steps_[index].nodes;
    places_.clear(nodes.size() * (mostHeld + 2));
    for (std::size_t from = 0; from < nodes.size(); ++from) {
      State state = nodes[from].state;
      double weight = forgetLongHeld(state, here.time);
      const auto extend = [&](const State& to, double gain, int meaning) {
        next.edges.push_back({from, places_.find(to, next.nodes), weight + gain, meaning});
        Node& node = next.nodes[next.edges.back().to];
        node.forward = logOfSum(node.forward, nodes[from].forward + weight + gain);
      };
      extend(state, stray, TypingModel::isStray);
      for (std::size_t i = 0; i < mostHeld && state.held[i] != none; ++i) {
        if (here.time - hit(state.held[i]).time < shortestHold) continue;
        State released = state;
        released.letGo(i);
        extend(released, release + holds_[windowPlace(state.held[i])], state.held[i]);
      }
      const bool isAfterPause = state.lastPress < static_cast<int>(windowBegin_);
      const double pace = isAfterPause ? pause_ : intervals_[windowPlace(state.lastPress)];
      if (state.held.back() != none) {
        state.letGo(0);
        weight += logUnheard_;
      }
      state.held[state.heldCount()] = static_cast<int>(index);
      state.lastPress = static_cast<int>(index);
      extend(state, press + pace, TypingModel::isPress);
    }
    keepBest(next);
  }

  /// The densities of the times since each hit that is not too long ago.
  void timeSince(std::size_t index) {
    const double now = hits_[index].time;
    while (now - hits_[windowBegin_].time > TypingModel::longestInterval)
      ++windowBegin_;
    holds_.clear();
    intervals_.clear();
    for (std::size_t i = windowBegin_; i < index; ++i) {
      holds_.push_back(logTimeDensity(model_.logHold, now - hits_[i].time));
      intervals_.push_back(logTimeDensity(model_.logInterval, now - hits_[i].time));
    }
  }
  std::size_t windowPlace(int press) const {
    return static_cast<std::size_t>(press) - windowBegin_;
  }

  /// A press whose release does not come was released unheard.
  double forgetLongHeld(State& state, double now) const {
    double weight = 0;
    while (state.held[0] != none && now - hit(state.held[0]).time > longestHold) {
      state.letGo(0);
      weight += logUnheard_;
    }
    return weight;
  }

  static void keepBest(Step& step) {
    std::vector<double> forwards;
    for (const Node& node : step.nodes)
      forwards.push_back(node.forward);
    const std::size_t last = std::min(beamWidth, forwards.size()) - 1;
    std::nth_element(forwards.begin(), forwards.begin() + static_cast<std::ptrdiff_t>(last),
                     forwards.end(), std::greater<>());
    const double best = *std::max_element(forwards.begin(), forwards.end());
    const double least = std::max(forwards[last], best - farBehind);
    std::vector<std::size_t> places(step.nodes.size(), step.nodes.size());
    std::vector<Node> kept;
    for (std::size_t i = 0; i < step.nodes.size(); ++i) {
      if (step.nodes[i].forward < least) continue;
      places[i] = kept.size();
      kept.push_back(step.nodes[i]);
    }
    std::erase_if(step.edges,
                  [&](const Edge& edge) { return places[edge.to] == step.nodes.size(); });
    for (Edge& edge : step.edges)
      edge.to = places[edge.to];
    step.nodes = std::move(kept);
  }

  void retreat(std::size_t index, TypingReading& reading) {
    auto& nodes = steps_[index].nodes;
    const Step& next = steps_[index + 1];
    std::vector<std::pair<int, double>> chances;
    const auto chanceOf = [&](int meaning) -> double& {
      const auto found = std::find_if(chances.begin(), chances.end(),
                                      [&](const auto& each) { return each.first == meaning; });
      return found != chances.end() ? found->second : chances.emplace_back(meaning, 0).second;
    };
    for (const Edge& edge : next.edges) {
      const double rest = edge.weight + next.nodes[edge.to].backward;
      nodes[edge.from].backward = logOfSum(nodes[edge.from].backward, rest);
      chanceOf(edge.meaning) += std::exp(nodes[edge.from].forward + rest - reading.logLikelihood);
    }
    const auto best =
        std::max_element(chances.begin(), chances.end(),
                         [](const auto& a, const auto& b) { return a.second < b.second; });
    reading.assignment[index] = best->first;
    reading.pressChance[index] = chanceOf(TypingModel::isPress);
  }

  const TypingModel& model_;
  const std::vector<TypedHit>& hits_;
  double logHeard_;
  double logUnheard_;
  double logStray_;
  double logPart_;
  double pause_;  // density of every interval beyond the longest
  // Since the hits from `windowBegin_` on, at the current one.
  std::size_t windowBegin_ = 0;
  std::vector<double> holds_;
  std::vector<double> intervals_;
  std::vector<Step> steps_;  // the first is before all hits
  Places places_;            // of the nodes after the current hit
};

}  // namespace

TypingReading readTyping(const TypingModel& model, const std::vector<TypedHit>& hits) {
  return Lattice(model, hits).read();
}

}  // namespace tobrin
