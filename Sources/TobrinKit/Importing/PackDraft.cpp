#include "Importing/PackDraft.h"

#include <algorithm>
#include <cmath>

#include "Base/AtomicFile.h"
#include "Base/ParallelFor.h"
#include "Building/DemoLoudness.h"
#include "Building/TakeCollection.h"
#include "Importing/ImportError.h"
#include "Importing/StrokeDerivation.h"
#include "Packs/FrameAllowance.h"
#include "Packs/LoadedPack.h"
#include "Packs/WAVWriter.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;
using Take = RecordedTake;

constexpr double toleratedLu = 0.05;
constexpr int mostRounds = 6;  // one may not be enough: takes that would clip stay behind

/// How a large pack is made to fit, the least loss first.
struct Fit {
  bool allTiers;
  double longestMs;
};
constexpr Fit fits[] = {{true, 2000}, {true, 1000}, {true, 600},  {true, 400}, {false, 1000},
                        {false, 600}, {false, 400}, {false, 200}, {false, 100}};

std::string pressFile(std::size_t entry, Tier tier) {
  return "press-" + std::to_string(entry + 1) + "-" + std::string(name(tier)) + ".wav";
}

std::string releaseFile(std::size_t entry) {
  return "release-" + std::to_string(entry + 1) + ".wav";
}

uint64_t framesOf(const std::vector<Take>& takes, std::size_t longest) {
  uint64_t frames = 0;
  for (const Take& take : takes)
    frames += std::min(take.left.size(), longest);
  return frames;
}

void cutTo(Take& take, std::size_t frames) {
  if (take.left.size() <= frames) return;
  const auto fade = static_cast<std::size_t>(0.02 * SoundLoader::rate);
  for (auto* channel : {&take.left, &take.right}) {
    channel->resize(frames);
    for (std::size_t i = 0; i < fade && i < frames; ++i)
      (*channel)[frames - 1 - i] *= static_cast<float>(i) / static_cast<float>(fade);
  }
}

std::unique_ptr<SampleBuffer> bufferOf(const Take& take) {
  return std::make_unique<SampleBuffer>(take.left, take.right, SoundLoader::rate);
}

void writeTake(const Take& take, const fs::path& file) {
  const auto rate = static_cast<int64_t>(SoundLoader::rate);
  if (take.left == take.right)
    writeWAV(take.left, std::nullopt, rate, file);
  else
    writeWAV(take.left, take.right, rate, file);
}

}  // namespace

PackDraft::PackDraft(PackManifest identity, TakeSet takes, ImportNotes& notes)
    : manifest_(std::move(identity)), takes_(std::move(takes)) {
  shorten(notes);
  addGroups();
  addKeys();
}

void PackDraft::shorten(ImportNotes& notes) {
  const uint64_t most = LoadedPack::memoryBudget / bytesPerFrame;
  for (const Fit& fit : fits) {
    const auto longest = static_cast<std::size_t>(fit.longestMs / 1000 * SoundLoader::rate);
    const uint64_t presses = framesOf(takes_.presses, longest) * (fit.allTiers ? tierCount : 1);
    if (presses + framesOf(takes_.releases, longest) > most) continue;
    for (auto* list : {&takes_.presses, &takes_.releases})
      for (Take& take : *list)
        cutTo(take, longest);
    tiers_ =
        fit.allTiers ? std::vector(allTiers.begin(), allTiers.end()) : std::vector{Tier::medium};
    if (&fit != &fits[0])
      notes.leftOut("sound after " + std::to_string(std::lround(fit.longestMs)) +
                    " ms of each key, to fit into memory");
    if (!fit.allTiers) notes.leftOut("softer and harder strokes of each key, to fit into memory");
    return;
  }
  throw ImportError(ImportError::Kind::tooLarge, "the pack has too many sounds");
}

void PackDraft::addGroups() {
  for (const auto& [group, lists] : takes_.groups) {
    PackManifest::Group& entry = manifest_.groups[std::string(rawValue(group))];
    for (const Tier tier : tiers_)
      for (const std::size_t take : lists.down)
        entry.down[std::string(name(tier))].push_back(pressFile(take, tier));
    if (lists.up.empty()) continue;
    for (const std::size_t take : lists.up)
      (entry.up ? *entry.up : entry.up.emplace()).push_back(releaseFile(take));
  }
}

/// Where a pack has releases, a key without one has to say so: it would play another key's.
void PackDraft::addKeys() {
  for (const auto& [code, key] : takes_.keys) {
    PackManifest::Key& entry = manifest_.keyTakes[code];
    entry.down.emplace(key.down.begin(), key.down.end());
    if (!takes_.releases.empty()) entry.up.emplace(key.up.begin(), key.up.end());
  }
}

/// Of the demo, which is typed at the medium strength alone.
double PackDraft::loudness() const {
  LoadedPack::Contents contents;
  for (const Take& take : takes_.presses)
    contents.buffers.push_back(bufferOf(take));
  for (const Take& take : takes_.releases)
    contents.buffers.push_back(bufferOf(take));
  for (const auto& [group, lists] : takes_.groups) {
    contents.down[group][Tier::medium] = lists.down;
    for (const std::size_t take : lists.up)
      contents.up[group].push_back(takes_.presses.size() + take);
  }
  return demoLoudness(LoadedPack({}, manifest_, std::move(contents)));
}

double PackDraft::level(double target) {
  double reached = loudness();
  if (!std::isfinite(reached)) {
    // Too quiet to be measured, or the demo's keys are silent: as loud as may be, then measured.
    float loudest = 0;
    for (const Take& take : takes_.presses)
      loudest = std::max(loudest, peak(take));
    if (loudest > 0) scaleAll(TakeCollection::referencePeak / loudest);
    reached = loudness();
  }
  for (int round = 0; round < mostRounds; ++round) {
    if (!std::isfinite(reached) || std::fabs(target - reached) < toleratedLu) break;
    scaleAll(static_cast<float>(std::pow(10.0, (target - reached) / 20)));
    reached = loudness();
  }
  return reached;
}

void PackDraft::scaleAll(float gain) {
  for (auto* list : {&takes_.presses, &takes_.releases})
    for (Take& take : *list)
      scale(take, gain);
}

void PackDraft::write(const fs::path& folder) const {
  const std::size_t presses = takes_.presses.size() * tiers_.size();
  parallelFor(presses + takes_.releases.size(), 0, [&](std::size_t i) {
    if (i >= presses)
      return writeTake(takes_.releases[i - presses], folder / releaseFile(i - presses));
    const std::size_t entry = i / tiers_.size();
    const Tier tier = tiers_[i % tiers_.size()];
    writeTake(derivedStroke(takes_.presses[entry], tier), folder / pressFile(entry, tier));
  });
  writeFileAtomically(folder / PackManifest::fileName, manifest_.toJson());
}

}  // namespace tobrin
