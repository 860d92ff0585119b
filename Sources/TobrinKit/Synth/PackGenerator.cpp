#include "Synth/PackGenerator.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "Base/AtomicFile.h"
#include "Base/ParallelFor.h"
#include "Packs/PackManifest.h"
#include "Packs/WAVWriter.h"
#include "Synth/KeySynth.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

constexpr unsigned alphaVariants = 4;    // per tier, and releases, of the letters
constexpr unsigned otherVariants = 2;    // of every other group
constexpr float referencePeak = 0.316f;  // of the loudest medium letter, about -10 dBFS
constexpr float leastPeak = 0.000001f;

struct Take {
  KeyGroup group = KeyGroup::alpha;
  std::optional<Tier> tier;  // none for a release
  unsigned variant = 0;
  KeySound sound;
  std::string file;  // the WAV file's bytes

  [[nodiscard]] std::string name() const {
    return std::string(rawValue(group)) + "-" + std::string(tier ? tobrin::name(*tier) : "up") +
           "-" + std::to_string(variant + 1) + ".wav";
  }
  [[nodiscard]] bool isReference() const {
    return group == KeyGroup::alpha && tier == Tier::medium;
  }
};

/// All takes of a pack in the order of their lists, without sound yet.
std::vector<Take> plannedTakes(std::span<const KeyGroup> groups) {
  std::vector<Take> takes;
  for (const KeyGroup group : groups) {
    const unsigned count = group == KeyGroup::alpha ? alphaVariants : otherVariants;
    const auto add = [&](std::optional<Tier> tier) {
      for (unsigned variant = 0; variant < count; ++variant)
        takes.push_back(
            {.group = group, .tier = tier, .variant = variant, .sound = {}, .file = {}});
    };
    for (const Tier tier : allTiers)
      add(tier);
    add(std::nullopt);
  }
  return takes;
}

float peakOf(const std::vector<float>& channel) {
  float peak = 0;
  for (const float sample : channel)
    peak = std::max(peak, std::fabs(sample));
  return peak;
}

/// One gain for the whole pack keeps tiers, groups and releases at their levels to each other.
float levellingGain(const std::vector<Take>& takes) {
  float peak = 0;
  for (const Take& take : takes)
    if (take.isReference())
      peak = std::max({peak, peakOf(take.sound.left), peakOf(take.sound.right)});
  return referencePeak / std::max(peak, leastPeak);
}

void encode(Take& take, float gain) {
  for (auto* channel : {&take.sound.left, &take.sound.right})
    for (float& sample : *channel)
      sample *= gain;
  take.file = encodeWAV(take.sound.left, take.sound.right, static_cast<int64_t>(synthSampleRate));
}

PackManifest manifestOf(const SynthProfile& profile, const std::vector<Take>& takes) {
  PackManifest manifest{.formatVersion = 1,
                        .id = profile.id,
                        .name = profile.name,
                        .kind = profile.kind,
                        .summary = profile.summary,
                        .author = "Tobrin",
                        .license = "Proprietary. Bundled with Tobrin.",
                        .groups = {}};
  for (const Take& take : takes) {
    auto& group = manifest.groups[std::string(rawValue(take.group))];
    if (take.tier)
      group.down[std::string(name(*take.tier))].push_back(take.name());
    else if (group.up)
      group.up->push_back(take.name());
    else
      group.up = {take.name()};
  }
  return manifest;
}

/// The folder is about to be removed: an id that leads elsewhere must not get that far.
void requireFolderName(const std::string& id) {
  if (id.empty() || id == "." || id == ".." || id.find_first_of(std::string("/\0", 2)) != id.npos)
    throw std::invalid_argument("\"" + id + "\" is no id of a pack: it names no folder");
}

}  // namespace

fs::path generatePack(const SynthProfile& profile, const fs::path& parent,
                      std::span<const KeyGroup> groups, unsigned threads) {
  requireFolderName(profile.id);
  fs::path folder = parent / profile.id;
  fs::remove_all(folder);
  fs::create_directories(folder);
  std::vector<Take> takes = plannedTakes(groups);
  parallelFor(takes.size(), threads, [&](std::size_t i) {
    takes[i].sound = renderKey(takes[i].group, takes[i].tier, takes[i].variant, profile);
  });
  const float gain = levellingGain(takes);
  parallelFor(takes.size(), threads, [&](std::size_t i) { encode(takes[i], gain); });
  for (const Take& take : takes)
    writeFileAtomically(folder / take.name(), take.file);
  // Written last: a pack that has its manifest has all its takes.
  writeFileAtomically(folder / PackManifest::fileName, manifestOf(profile, takes).toJson());
  return folder;
}

}  // namespace tobrin
