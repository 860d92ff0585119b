#include "Building/RecordedPackBuilder.h"

#include <algorithm>
#include <cstdio>
#include <set>

#include "Base/PackError.h"
#include "Base/ParallelFor.h"
#include "Base/RecipeError.h"
#include "Building/HitFeatures.h"
#include "Building/RecordingCache.h"
#include "Building/TakeCollection.h"
#include "Building/TakeCutter.h"
#include "Building/TakeWriter.h"
#include "Packs/PackManifest.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;
using Take = RecordedTake;
using Options = SlicerOptions;

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

/// Writes all takes and the manifest.
void writePack(const PackRecipe& recipe, const TakeCollection& takes, TakeWriter& writer) {
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
  writer.write(manifest);
}

std::string summary(const WrittenPack& pack, const fs::path& into) {
  char numbers[64];
  (void)std::snprintf(numbers, sizeof numbers, "/  (%.1f LUFS)", pack.loudness);
  return "    wrote " + std::to_string(pack.takes) + " takes to " + into.filename().string() +
         numbers;
}

/// A number stands for one recording, in the cache and in the credits: a second recording with the
/// same number would silently be left out.
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
  const WrittenPack written =
      writeLevelled(folder.aside(), [&](TakeWriter& writer) { writePack(recipe, takes, writer); });
  folder.moveIntoPlace(exchange);
  log(summary(written, target));
}

}  // namespace tobrin
