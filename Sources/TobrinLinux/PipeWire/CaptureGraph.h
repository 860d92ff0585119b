/// The microphones, and which programs record from one, found by following the links between the
/// sound server's nodes. What streams say of themselves proves nothing: a stream that asks for a
/// microphone may be linked to a monitor, and the other way round. A plain value. Thread: any.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Mic/MicActivity.h"
#include "Recording/SoundCapture.h"

namespace tobrin {

class CaptureGraph final {
 public:
  struct Node {
    std::string name{};
    std::string description{};
    std::string mediaClass{};  // empty for those of JACK programs and of some filters
    std::string category{};
    std::string linkGroup{};  // shared by the two ends of a filter; empty: none
    std::optional<uint32_t> clientId{};
    std::optional<uint32_t> deviceId{};
    bool isRunning = false;
    bool isLevelMeter = false;
  };
  struct Link {
    uint32_t from = 0;  // node ids
    uint32_t to = 0;
  };

  std::map<uint32_t, Node> nodes;
  std::map<uint32_t, Link> links;
  std::map<uint32_t, int32_t> processes;  // by client id
  std::string defaultSource;              // node name; empty: none

  /// Counts programs, `ownProcess` excepted, that record from a microphone or what an output plays,
  /// directly or through filters. Filters and level meters do not count by themselves, and neither
  /// do paused streams. A program whose process is not known counts as process 0.
  [[nodiscard]] MicActivity activity(int32_t ownProcess) const;

  /// Every microphone, filtered ones last. Where the default one is a filter's output, the one that
  /// the filter listens to counts as the default.
  [[nodiscard]] std::vector<SoundCapture::Input> microphones() const;

  /// Whether the decision depends on more of this node than a listing shows: state, filter, meter.
  [[nodiscard]] bool needsDetails(uint32_t nodeId) const;

 private:
  using Ids = std::set<uint32_t>;

  [[nodiscard]] Ids microphonesBehind(uint32_t nodeId, Ids& visited) const;
  [[nodiscard]] bool hearsAnOutput(uint32_t nodeId, Ids& visited) const;
  void addMicrophonesOfFilter(const Node& output, Ids& microphones, Ids& visited) const;
  [[nodiscard]] std::optional<uint32_t> unfilteredDefaultId() const;
  [[nodiscard]] bool isLookedThrough(const Node& node) const;
  [[nodiscard]] bool isUser(const Node& node) const;
  [[nodiscard]] std::optional<uint32_t> defaultSourceId() const;
  [[nodiscard]] bool alsoPlays(uint32_t nodeId) const;
  [[nodiscard]] const Node* find(uint32_t nodeId) const;
};

}  // namespace tobrin
