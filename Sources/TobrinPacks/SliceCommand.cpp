#include "SliceCommand.h"

#include <nlohmann/json.hpp>

#include "Building/AtomicFile.h"
#include "Building/PackRecipe.h"
#include "Building/RecipeError.h"
#include "InputFile.h"
#include "JsonOutput.h"
#include "Packs/SampleBuffer.h"
#include "SlicePlot.h"

namespace tobrin {
namespace {

using Json = nlohmann::ordered_json;

struct Options {
  std::string recording;
  std::string optionsFile;
  std::string plotFile;
  bool json = false;
};

constexpr double rate = 48000;  // that packs are built at

Json asJson(const RecordingSlicer::Hit& hit) {
  return {{"onset", hit.onset},         {"peak", hit.peak},
          {"energy", hit.energy},       {"brightness", hit.brightness},
          {"decayMs", hit.decayMs},     {"preActivity", hit.preActivity},
          {"clipped", hit.clipped},     {"gapAfter", hit.gapAfter},
          {"isRelease", hit.isRelease}, {"isBig", hit.isBig}};
}

Json asJson(const RecordingSlicer::Result& result) {
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

void printSummary(const RecordingSlicer::Result& result, std::ostream& out) {
  out << result.report << '\n';
  for (const auto& [group, tiers] : result.down) {
    out << "takes for " << (group == KeyGroup::alpha ? "ordinary keys:" : "wide keys:");
    for (const auto& [tier, takes] : tiers)
      out << ' ' << name(tier) << ' ' << takes.size();
    out << '\n';
  }
  out << "takes for releases: " << result.up.size() << '\n';
}

RecordingSlicer::Options slicerOptions(const std::string& file) {
  if (file.empty()) return {};
  try {
    return slicerOptionsFromJson(readInputFile(file));
  } catch (const RecipeError& error) {
    throw std::runtime_error(file + ": " + error.what());
  }
}

void run(const Options& options, const CommandStreams& streams) {
  const auto slicing = slicerOptions(options.optionsFile);
  const auto recording = SampleBuffer::load(options.recording, rate);
  const std::span left(recording->left(), recording->frames());
  const std::span right(recording->right(), recording->frames());
  const auto result = RecordingSlicer::slice(left, right, rate, slicing);
  if (!options.plotFile.empty()) {
    writeFileAtomically(options.plotFile, slicePlot(result, left, right, rate, slicing));
  }
  if (options.json) {
    printJson(asJson(result), streams.out);
  } else {
    printSummary(result, streams.out);
  }
}

constexpr const char* footer = R"(
Positions are samples at 48 kHz, whatever the recording's own rate.

Examples:
  tobrin-packs slice typing.flac
  tobrin-packs slice typing.flac --plot typing.svg      look at every hit
  tobrin-packs slice typing.flac --options slicer.json --json
)";

}  // namespace

void addSliceCommand(CLI::App& app, const CommandStreams& streams) {
  const auto options = std::make_shared<Options>();
  auto* const command =
      app.add_subcommand("slice", "Find the keystrokes of a recording and what becomes of them");
  command->add_option("RECORDING", options->recording, "An audio file")->required();
  command->add_option("--options", options->optionsFile, "Slicer options as a JSON file");
  command->add_option("--plot", options->plotFile, "Draw waveform, hits and tiers as an SVG file");
  command->add_flag("--json", options->json, "One JSON document with every hit");
  command->footer(footer);
  command->callback([options, streams] { run(*options, streams); });
}

}  // namespace tobrin
