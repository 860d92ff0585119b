#include <CLI/CLI.hpp>
#include <cmath>
#include <filesystem>
#include <iomanip>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "Building/DemoLoudness.h"
#include "Building/Loudness.h"
#include "Commands.h"
#include "JsonOutput.h"
#include "Packs/SampleBuffer.h"

namespace tobrin {
namespace {

struct Options {
  std::string path;
  bool json = false;
};

constexpr double measuringRate = 48000;

double fileLoudness(const std::filesystem::path& file) {
  const auto sound = SampleBuffer::load(file, measuringRate);
  const std::span left(sound->left(), sound->frames());
  std::optional<std::span<const float>> right;
  if (!sound->isMono()) right = {sound->right(), sound->frames()};
  return integratedLoudness(left, right, measuringRate);
}

void run(const Options& options, const CommandStreams& streams) {
  const bool isPack = std::filesystem::is_directory(options.path);
  const double lufs = isPack ? demoLoudness(options.path) : fileLoudness(options.path);
  if (options.json) {
    nlohmann::ordered_json document{{"path", options.path}, {"lufs", nullptr}};
    if (std::isfinite(lufs)) document["lufs"] = lufs;
    printJson(document, streams.out);
  } else if (std::isfinite(lufs)) {
    streams.out << std::fixed << std::setprecision(2) << lufs << " LUFS\n";
  } else {
    streams.out << "-inf LUFS (shorter than 0.4 s, or never above -70 LUFS)\n";
  }
}

constexpr const char* footer = R"(
A pack is measured by a sentence typed with it at 85 words a minute.

Examples:
  tobrin-packs loudness recording.flac
  tobrin-packs loudness Packs/mine --json
)";

}  // namespace

void addLoudnessCommand(CLI::App& app, const CommandStreams& streams) {
  const auto options = std::make_shared<Options>();
  auto* const command = app.add_subcommand(
      "loudness", "Measure the integrated loudness of an audio file or of a pack's folder");
  command->add_option("PATH", options->path, "An audio file, or a pack's folder")->required();
  command->add_flag("--json", options->json, "One JSON document instead of a line of text");
  command->footer(footer);
  command->callback([options, streams] { run(*options, streams); });
}

}  // namespace tobrin
