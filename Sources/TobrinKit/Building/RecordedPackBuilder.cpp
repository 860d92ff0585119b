#include "Building/RecordedPackBuilder.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <set>

#include "Base/AtomicFile.h"
#include "Base/PackError.h"
#include "Base/ParallelFor.h"
#include "Base/RecipeError.h"
#include "Building/DemoLoudness.h"
#include "Building/HitFeatures.h"
#include "Building/RecordingCache.h"
#include "Building/TakeCollection.h"
#include "Building/TakeCutter.h"
#include "Packs/PackManifest.h"
#include "Packs/WAVWriter.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;
using Take = RecordedTake;
using Options = SlicerOptions;

constexpr double toleratedLu = 0.2;

/// Where recordings are kept, and what converts them.
struct Workplace {
  const fs::path& cache;
  const ProcessRunner& programs;
};

SlicedRecording sliced(const PackRecipe::Source& source, const Workplace& workplace,
                       const Options& options) {
  const auto recording = loadRecording(source, workplace.cache, workplace.programs);
  const auto part = partOf(*recording, source);
  return sliceRecording(part.left, part.right, recordedPackRate, options);
}

/// Every press of a recording of the return key alone, as many as wide keys have variants.
std::vector<Take> enterTakes(const PackRecipe::Source& source, const Workplace& workplace,
                             const Options& options) {
  const auto recording = loadRecording(source, workplace.cache, workplace.programs);
  const auto part = partOf(*recording, source);
  const double rate = recordedPackRate;
  const auto found = detectHits(part.left, part.right, rate, options);
  const TakeCutter cutter({part.left, part.right, {}, rate}, options);
  std::vector<Take> takes;
  for (const auto& hit : found.hits) {
    if (static_cast<int64_t>(takes.size()) >= options.bigVariants) break;
    if (hit.isRelease || hit.clipped) continue;
    auto take = cutter.cut(hit, options.maxBigPressMs, options.minPressMs);
    if (take) takes.push_back(std::move(*take));
  }
  return takes;
}

/// Runs `work` for every source, several at a time, and returns the results in the sources' order;
/// of failures, the first in that order is thrown. No more at a time than there are cores: a long
/// recording takes hundreds of megabytes while it is sliced.
template <typename Result, typename Work>
std::vector<Result> forEachSource(const std::vector<PackRecipe::Source>& sources,
                                  const Work& work) {
  std::vector<Result> results(sources.size());
  parallelFor(sources.size(), 0, [&](std::size_t i) { results[i] = work(sources[i]); });
  return results;
}

TakeCollection collected(const PackRecipe& recipe, const Workplace& workplace,
                         const BuildLog& log) {
  const Options options = recipe.options.value_or(Options());
  TakeCollection takes(options);
  // Once for each recording, also when several sources are parts of the same one.
  forEachSource<fs::path>(recipe.credits(), [&](const auto& source) {
    return fetchRecording(source, workplace.cache, workplace.programs);
  });
  auto results = forEachSource<SlicedRecording>(
      recipe.sources, [&](const auto& source) { return sliced(source, workplace, options); });
  for (std::size_t i = 0; i < results.size(); ++i) {
    log("  " + recipe.sources[i].title + ": " + results[i].report);
    takes.add(std::move(results[i]));
  }
  if (!recipe.enterSources) return takes;
  auto enter = forEachSource<std::vector<Take>>(*recipe.enterSources, [&](const auto& source) {
    return enterTakes(source, workplace, options);
  });
  for (std::size_t i = 0; i < enter.size(); ++i) {
    log("  " + (*recipe.enterSources)[i].title + ": " + std::to_string(enter[i].size()) +
        " takes for Enter");
    takes.addEnter(std::move(enter[i]));
  }
  return takes;
}

/// Writes takes below one folder and remembers their names.
class TakeWriter {
 public:
  TakeWriter(const fs::path& folder, float correction) : folder_(folder), correction_(correction) {}

  std::vector<std::string> write(const std::string& prefix, const std::vector<Take>& takes) {
    std::vector<std::string> names;
    for (Take take : takes) {
      scale(take, correction_);
      names.push_back(prefix + "-" + std::to_string(names.size() + 1) + ".wav");
      writeWAV(take.left, take.right, static_cast<int64_t>(recordedPackRate),
               folder_ / names.back());
      ++count_;
    }
    return names;
  }

  std::map<std::string, std::vector<std::string>> write(const std::string& prefix,
                                                        const RecordedTiers& tiers) {
    std::map<std::string, std::vector<std::string>> names;
    for (const auto& [tier, takes] : tiers) {
      const std::string tierName(name(tier));
      std::string tierPrefix = prefix;
      names[tierName] = write(tierPrefix.append("-").append(tierName), takes);
    }
    return names;
  }

  [[nodiscard]] std::size_t count() const { return count_; }

 private:
  fs::path folder_;
  float correction_;
  std::size_t count_ = 0;
};

std::string authors(const PackRecipe& recipe) {
  std::set<std::string> users;
  for (const auto& source : recipe.sources)
    users.insert(source.user);
  for (const auto& source : recipe.enterSources.value_or(std::vector<PackRecipe::Source>()))
    users.insert(source.user);
  std::string list;
  for (const std::string& user : users)
    list += (list.empty() ? "" : ", ") + user;
  return list;
}

PackManifest manifestOf(const PackRecipe& recipe) {
  PackManifest manifest;
  manifest.formatVersion = 1;
  manifest.id = recipe.id;
  manifest.name = recipe.name;
  manifest.kind = recipe.kind;
  manifest.summary = recipe.summary;
  manifest.author = authors(recipe);
  manifest.license = recipe.licenseText();
  return manifest;
}

/// Writes all takes and the manifest; returns the number of takes.
std::size_t writePack(const PackRecipe& recipe, const TakeCollection& takes, const fs::path& folder,
                      float correction) {
  TakeWriter writer(folder, correction);
  const auto keys = writer.write("key", takes.keys());
  const auto wide = writer.write("wide", takes.wide());
  const auto up = writer.write("up", takes.releases());
  const auto enter = writer.write("enter", takes.enter());
  const auto& ordinary = keys.empty() ? wide : keys;
  const auto& large = wide.empty() ? keys : wide;
  if (ordinary.empty()) throw PackError::empty(recipe.id);

  PackManifest manifest = manifestOf(recipe);
  for (const KeyGroup group : allKeyGroups) {
    const bool isOrdinary = group == KeyGroup::alpha || group == KeyGroup::modifier;
    PackManifest::Group entry{isOrdinary ? ordinary : large, std::nullopt};
    // One tier: the loader makes the others from it, by loudness.
    if (group == KeyGroup::enter && !enter.empty()) entry.down = {{"medium", enter}};
    if (!up.empty()) entry.up = up;
    manifest.groups.emplace(rawValue(group), std::move(entry));
  }
  writeFileAtomically(folder / PackManifest::fileName, manifest.toJson());
  return writer.count();
}

std::string summary(std::size_t takes, const fs::path& into, double loudness) {
  char numbers[64];
  (void)std::snprintf(numbers, sizeof numbers, "/  (%.1f LUFS)", loudness);
  return "    wrote " + std::to_string(takes) + " takes to " + into.filename().string() + numbers;
}

/// A number stands for one recording, in the cache as in the credits: a second one would silently
/// be left out for the first.
void refuseSharedNumbers(const PackRecipe& recipe) {
  const auto known = recipe.credits();
  const auto check = [&](const PackRecipe::Source& source) {
    const auto first = std::find_if(known.begin(), known.end(), [&](const auto& each) {
      return each.freesoundID == source.freesoundID;
    });
    if (first->previewURL == source.previewURL) return;
    throw RecipeError("\"freesoundID\" " + std::to_string(source.freesoundID) + " stands for " +
                      first->previewURL + " and for " + source.previewURL +
                      ": each recording needs another number");
  };
  std::for_each(recipe.sources.begin(), recipe.sources.end(), check);
  if (recipe.enterSources)
    std::for_each(recipe.enterSources->begin(), recipe.enterSources->end(), check);
}

}  // namespace

void buildRecordedPack(const PackRecipe& recipe, const fs::path& cache, const fs::path& into,
                       const BuildLog& log, const ProcessRunner& programs,
                       const FolderExchange& exchange) {
  if (recipe.sources.empty()) throw RecipeError("\"sources\" must name at least one recording");
  refuseSharedNumbers(recipe);
  const fs::path target = PackFolder::replaceable(into);
  const TakeCollection takes = collected(recipe, {cache, programs}, log);
  PackFolder folder(target);
  std::size_t count = writePack(recipe, takes, folder.aside(), 1.0f);
  double loudness = demoLoudness(folder.aside());
  if (std::isfinite(loudness) && std::abs(loudness - targetLoudness) > toleratedLu) {
    const auto correction = static_cast<float>(std::pow(10.0, (targetLoudness - loudness) / 20));
    count = writePack(recipe, takes, folder.aside(), correction);
    loudness = demoLoudness(folder.aside());
  }
  folder.moveIntoPlace(exchange);
  log(summary(count, target, loudness));
}

}  // namespace tobrin
