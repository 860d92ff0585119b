#include <stdlib.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "Base/AtomicFile.h"
#include "Base/PackError.h"
#include "Base/RecipeError.h"
#include "Building/PackRecipe.h"
#include "Building/RecordedPackBuilder.h"
#include "Building/RecordingCache.h"
#include "Building/RecordingConversion.h"
#include "Commands.h"
#include "Importing/TemporaryFolder.h"
#include "InputFile.h"
#include "JsonOutput.h"
#include "KeyedSlice.h"
#include "Packs/SampleBuffer.h"
#include "SlicePlot.h"
#include "System/SpawningProcessRunner.h"
#include "Warnings.h"

namespace tobrin {
namespace {

using Json = nlohmann::ordered_json;

struct Options {
  std::string recording;
  std::string optionsFile;
  std::string plotFile;
  std::string keysFile;
  bool json = false;
};

constexpr double rate = recordedPackRate;

Json asJson(const RecordedHit& hit) {
  return {{"onset", hit.onset},         {"peak", hit.peak},
          {"energy", hit.energy},       {"brightness", hit.brightness},
          {"decayMs", hit.decayMs},     {"preActivity", hit.preActivity},
          {"clipped", hit.clipped},     {"gapAfter", hit.gapAfter},
          {"isRelease", hit.isRelease}, {"isBig", hit.isBig}};
}

Json asJson(const SlicedRecording& result) {
  Json hits = Json::array();
  for (const auto& hit : result.hits)
    hits.push_back(asJson(hit));
  Json down = Json::object();
  for (const auto& [group, tiers] : result.down) {
    for (const auto& [tier, takes] : tiers) {
      down[std::string(rawValue(group))][std::string(name(tier))] = takes.size();
    }
  }
  return {{"rate", rate}, {"noiseFloor", result.noiseFloor}, {"hits", std::move(hits)},
          {"down", down}, {"up", result.up.size()},          {"report", result.report}};
}

template <typename GroupName>
void printSummary(const SlicedRecording& result, const GroupName& groupName, std::ostream& out) {
  out << result.report << '\n';
  for (const auto& [group, tiers] : result.down) {
    out << "takes for " << groupName(group) << ':';
    for (const auto& [tier, takes] : tiers)
      out << ' ' << name(tier) << ' ' << takes.size();
    out << '\n';
  }
  out << "takes for releases: " << result.up.size() << '\n';
}

/// What a build would do with the recording.
struct Plan {
  SlicerOptions options;
  PackRecipe::Source part;  // its `start` and `end`
};

/// The source of the recipe that is this recording; of several parts the first.
PackRecipe::Source partOf(const PackRecipe& recipe, const Options& options, std::ostream& err) {
  const auto isMeant = [&](const PackRecipe::Source& source) {
    const auto file = source.file();
    std::error_code missing;
    return file && std::filesystem::equivalent(*file, options.recording, missing);
  };
  const auto found = std::find_if(recipe.sources.begin(), recipe.sources.end(), isMeant);
  const std::string whole = options.optionsFile + " is a whole recipe: its options are taken";
  if (found == recipe.sources.end()) {
    warn(err, whole + "; it does not name this recording");
    return {};
  }
  const bool isOnly = std::none_of(found + 1, recipe.sources.end(), isMeant);
  warn(err, whole + (isOnly ? ", and the part of the recording that it names"
                            : ", and the first of the parts that it names"));
  return *found;
}

Plan planOf(const Options& options, std::ostream& err) {
  const std::string& file = options.optionsFile;
  if (file.empty()) return {};
  const std::string content = readInputFile(file);
  try {
    if (!PackRecipe::isOne(content)) {
      Plan plan{slicerOptionsFromJson(content), {}};
      warnOfUnknownNames(file, content, toJson(plan.options), err);
      return plan;
    }
    PackRecipe recipe = PackRecipe::fromJson(content);
    warnOfUnknownNames(file, content, exampleRecipe(), err);
    recipe.resolvePaths(std::filesystem::path(file).parent_path());
    return {recipe.options.value_or(SlicerOptions()), partOf(recipe, options, err)};
  } catch (const RecipeError& error) {
    throw std::runtime_error(file + ": " + error.what());
  }
}

/// Converted as for a build: another converter would not find quite the same onsets, and reads
/// other formats.
std::unique_ptr<SampleBuffer> decoded(const std::string& recording, std::ostream& err) {
  const auto file = std::filesystem::absolute(recording);  // no option, and no address
  if (!std::filesystem::exists(file)) throw PackError::decode(file, "there is no such file");
  const TemporaryFolder folder;
  const auto wav = folder.path() / "recording.wav";
  switch (convertRecording(file, wav, SpawningProcessRunner())) {
    case Conversion::done:
      return SampleBuffer::load(wav, rate);
    case Conversion::failed:
      break;
    case Conversion::noConverter:
      warn(err, "ffmpeg is not installed; a build needs it");
      return SampleBuffer::load(file, rate);
  }
  throw PackError::decode(file, conversionFailed);
}

/// Of the whole recording: the times of keys count from its start.
void runByKeys(const Options& options, const SlicerOptions& slicing, const RecordingPart& recording,
               std::ostream& out) {
  const KeyedSlice slice = sliceByKeys(recording, rate, options.keysFile, slicing);
  const SlicedRecording result = asSliced(slice);
  if (!options.plotFile.empty()) {
    const auto& samples = slice.recording.samples;
    writeFileAtomically(options.plotFile, slicePlot(result, samples, samples, rate, slicing));
  }
  if (!options.json) return printSummary(result, rawValue, out);
  Json json = asJson(result);
  json["fit"] = fitAsJson(slice.takes.fit);
  json["keys"] = keysAsJson(slice);
  printJson(json, out);
}

void run(const Options& options, const CommandStreams& streams) {
  const Plan plan = planOf(options, streams.err);
  const auto recording = decoded(options.recording, streams.err);
  if (!options.keysFile.empty()) {
    return runByKeys(options, plan.options, partOf(*recording, PackRecipe::Source()), streams.out);
  }
  const auto [left, right] = partOf(*recording, plan.part);
  const auto result = sliceRecording(left, right, rate, plan.options);
  if (!options.plotFile.empty()) {
    writeFileAtomically(options.plotFile, slicePlot(result, left, right, rate, plan.options));
  }
  if (options.json) {
    printJson(asJson(result), streams.out);
  } else {
    const auto sizeName = [](KeyGroup group) {
      return group == KeyGroup::alpha ? "ordinary keys" : "wide keys";
    };
    printSummary(result, sizeName, streams.out);
  }
}

constexpr const char* footer = R"(
The recording is converted as for a build, by ffmpeg. Positions are samples at 48 kHz, whatever its
own rate. FILE may be a whole recipe: its options are taken, and the part of the recording that it
names by "start" and "end"; positions count from there.

With --keys no sound is guessed: the file says which keys were typed when (time_ns, action, group,
key), counted from the first frame. Each key of the JSON document then has a "fate": good, unheard,
overlapping, crowded, disturbed or clipped.

Examples:
  tobrin-packs slice typing.flac
  tobrin-packs slice typing.flac --plot typing.svg      look at every hit
  tobrin-packs slice typing.flac --options mine.json --json
  tobrin-packs slice mine.wav --keys mine.keys.csv
)";

}  // namespace

void addSliceCommand(CLI::App& app, const CommandStreams& streams) {
  const auto options = std::make_shared<Options>();
  auto* const command =
      app.add_subcommand("slice", "Find the keystrokes of a recording and what becomes of them");
  command->add_option("RECORDING", options->recording, "An audio file")->required();
  command->add_option("--options", options->optionsFile,
                      "Slicer options, or a recipe, as a JSON file");
  command->add_option("--keys", options->keysFile, "The keys that were typed, as a CSV file");
  command->add_option("--plot", options->plotFile,
                      "Draw waveform, hits and strengths as an SVG file");
  command->add_flag("--json", options->json, "One JSON document with every hit");
  command->footer(footer);
  command->callback([options, streams] { run(*options, streams); });
}

}  // namespace tobrin
