#include "Model/OutputChoice.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "Engine/VoiceBoost.h"

namespace tobrin {
namespace {

/// Devices of one name are told apart by a number that follows from their ids.
void numberEqualNames(std::vector<OutputChoice::Entry>& sorted) {
  for (auto first = sorted.begin(); first != sorted.end();) {
    const auto next = std::find_if(first, sorted.end(),
                                   [&](const auto& entry) { return entry.name != first->name; });
    for (auto entry = first + 1; entry < next; ++entry)
      entry->name += " (" + std::to_string(entry - first + 1) + ")";
    first = next;
  }
}

}  // namespace

OutputChoice::OutputChoice(Services services) : services_(std::move(services)) {}

void OutputChoice::start() {
  if (!chosen().empty()) services_.play(chosen());
}

void OutputChoice::outputsChanged(const SoundOutputs& outputs) {
  outputs_ = outputs;
  noteName();
  // Between two devices none is used for a moment; the volume waits for the next.
  if (!outputs_.used.empty() && std::exchange(used_, outputs_.used) != outputs_.used)
    adoptLoudness();
  emit changed();
}

void OutputChoice::volumeChanged() {
  isVolumeSetBefore_ |= used_.empty();
  keepLoudness();
}

void OutputChoice::adoptLoudness() {
  const auto known = services_.memory.loudness.find(used_);
  if (known != services_.memory.loudness.end()) {
    const Loudness remembered = known->second;
    if (!isBoostSetBefore_) services_.setBoost(boost_ = remembered.boost);
    if (!isVolumeSetBefore_) services_.setVolume(remembered.volume);
  }
  isVolumeSetBefore_ = isBoostSetBefore_ = false;
  keepLoudness();
}

void OutputChoice::keepLoudness() {
  if (used_.empty()) return;
  Loudness& kept = services_.memory.loudness[used_];
  const Loudness now{.volume = services_.volume(), .boost = boost_};
  if (std::exchange(kept, now) != now) services_.saveMemory();
}

void OutputChoice::setBoost(float boost) {
  boost_ = std::clamp(boost, 1.0F, VoiceBoost::most);
  services_.setBoost(boost_);
  isBoostSetBefore_ |= used_.empty();
  keepLoudness();
  emit changed();
}

void OutputChoice::choose(const std::string& id) {
  // A device that is away has no name but the one kept.
  if (id != chosen()) services_.memory.chosenName.clear();
  services_.memory.chosen = id;
  noteName();
  services_.saveMemory();
  services_.play(id);
  emit changed();
}

void OutputChoice::noteName() {
  for (const SoundOutput& output : outputs_.present) {
    if (output.id != chosen() || output.name == services_.memory.chosenName) continue;
    services_.memory.chosenName = output.name;
    services_.saveMemory();
  }
}

std::vector<OutputChoice::Entry> OutputChoice::entries() const {
  std::vector<Entry> entries;
  for (const SoundOutput& output : outputs_.present)
    entries.push_back({.id = output.id, .name = output.name});
  const auto isChosen = [this](const Entry& entry) { return entry.id == chosen(); };
  if (!chosen().empty() && std::ranges::none_of(entries, isChosen)) {
    const std::string& name = services_.memory.chosenName;
    entries.push_back({.id = chosen(), .name = name.empty() ? chosen() : name, .isPresent = false});
  }
  std::ranges::sort(entries, {}, [](const Entry& entry) { return std::tie(entry.name, entry.id); });
  numberEqualNames(entries);
  return entries;
}

OutputChoice::Entry OutputChoice::used() const {
  for (const Entry& entry : entries())
    if (entry.id == outputs_.used) return entry;
  return {};
}

}  // namespace tobrin
