#include "KeyedSlice.h"

#include <algorithm>
#include <numeric>

#include "Recording/KeyTimes.h"
#include "Recording/TierCounts.h"

namespace tobrin {
namespace {

using Json = nlohmann::ordered_json;

std::vector<float> monoOf(std::span<const float> left, std::span<const float> right) {
  std::vector<float> mono(left.size());
  std::transform(left.begin(), left.end(), right.begin(), mono.begin(),
                 [](float a, float b) { return (a + b) / 2; });
  return mono;
}

HitFate hitFateOf(const RecordedKey& key, KeyFate fate) {
  if (fate == KeyFate::clipped) return HitFate::clipped;
  if (fate != KeyFate::good) return HitFate::overlapping;
  if (key.action == KeyAction::up) return HitFate::release;
  return isLarge(key.group) ? HitFate::bigPress : HitFate::press;
}

bool isHeard(const KeyEventSound& sound) {
  return sound.hit.peak > 0;
}

}  // namespace

KeyedSlice sliceByKeys(const RecordingPart& recording, double rate, const std::string& keysFile,
                       const SlicerOptions& options) {
  KeyedSlice slice{{monoOf(recording.left, recording.right), rate, loadKeyTimes(keysFile)}, {}};
  slice.takes = findKeyedTakes(slice.recording, options);
  return slice;
}

SlicedRecording asSliced(const KeyedSlice& slice) {
  const auto& sounds = slice.takes.sounds;
  std::vector<std::size_t> order;
  for (std::size_t key = 0; key < sounds.size(); ++key)
    if (isHeard(sounds[key])) order.push_back(key);
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    return sounds[a].hit.onset < sounds[b].hit.onset;
  });
  SlicedRecording result;
  for (const std::size_t key : order) {
    result.hits.push_back(sounds[key].hit);
    result.fates.push_back(hitFateOf(slice.recording.keys[key], sounds[key].fate));
  }
  result.down = slice.takes.down;
  for (const auto& [group, takes] : slice.takes.up)
    result.up.insert(result.up.end(), takes.begin(), takes.end());
  result.noiseFloor = slice.takes.noiseFloor;
  result.report = slice.takes.report;
  return result;
}

Json fitAsJson(const ClockFit& fit) {
  if (!fit.isKnown) return nullptr;
  return {{"delay", fit.delay},
          {"drift", fit.drift},
          {"releaseLag", fit.releaseLag},
          {"spread", fit.spread}};
}

Json keysAsJson(const KeyedSlice& slice) {
  Json keys = Json::array();
  for (std::size_t i = 0; i < slice.recording.keys.size(); ++i) {
    const RecordedKey& key = slice.recording.keys[i];
    const KeyEventSound& sound = slice.takes.sounds[i];
    keys.push_back({{"time_ns", key.time},
                    {"action", nameOf(key.action)},
                    {"group", rawValue(key.group)},
                    {"key", key.number},
                    {"fate", nameOf(sound.fate)},
                    {"onset", isHeard(sound) ? Json(sound.hit.onset) : Json()}});
  }
  return keys;
}

}  // namespace tobrin
