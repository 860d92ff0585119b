#include <CLI/CLI.hpp>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "Base/ExchangeFolders.h"
#include "Base/RecipeError.h"
#include "Base/UserFolders.h"
#include "Building/DemoLoudness.h"
#include "Building/RecordedPackBuilder.h"
#include "Commands.h"
#include "Importing/TemporaryFolder.h"
#include "InputFile.h"
#include "JsonOutput.h"
#include "Packs/PackLoader.h"
#include "System/SpawningProcessRunner.h"
#include "Warnings.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

struct Options {
  std::string recipe;
  std::string into;
  std::string cache;
  bool json = false;
};

/// Where fetched and converted recordings stay between builds.
fs::path defaultCache() {
  const fs::path folder = cacheFolder();
  return (folder.empty() ? temporaryFiles() : folder) / "tobrin";
}

PackRecipe recipeFrom(const std::string& file, std::ostream& err) {
  const std::string content = readInputFile(file);
  try {
    PackRecipe recipe = PackRecipe::fromJson(content);
    recipe.resolvePaths(fs::path(file).parent_path());
    warnOfUnknownNames(file, content, exampleRecipe(), err);
    return recipe;
  } catch (const RecipeError& error) {
    throw std::runtime_error(file + ": " + error.what());
  }
}

void printResult(const fs::path& folder, std::ostream& out) {
  const auto pack = loadPack(PackInfo::read(folder, false), recordedPackRate);
  printJson({{"id", pack->info().id},
             {"path", folder.string()},
             {"takes", pack->sampleCount()},
             {"lufs", demoLoudness(*pack)}},
            out);
}

void run(const Options& options, const CommandStreams& streams) {
  const PackRecipe recipe = recipeFrom(options.recipe, streams.err);
  const fs::path cache = options.cache.empty() ? defaultCache() : fs::path(options.cache);
  std::ostream& progress = options.json ? streams.err : streams.out;
  progress << "building " << recipe.name << std::endl;
  buildRecordedPack(
      recipe, cache, options.into, [&](const std::string& line) { progress << line << std::endl; },
      SpawningProcessRunner(), exchangeFolders);
  if (options.json) printResult(options.into, streams.out);
}

constexpr const char* footer = R"(
Recordings are fetched once and kept in the cache; "previewURL" may be a file address or a path,
relative to the recipe. A failed build leaves the folder as it was.

Examples:
  tobrin-packs build mine.json --into ~/.local/share/Tobrin/Packs/mine
  tobrin-packs build mine.json --into mine --cache /tmp/recordings --json
)";

}  // namespace

void addBuildCommand(CLI::App& app, const CommandStreams& streams) {
  const auto options = std::make_shared<Options>();
  auto* const command = app.add_subcommand("build", "Build a pack from recordings, by a recipe");
  command->add_option("RECIPE", options->recipe, "The recipe, a JSON file")->required();
  command->add_option("--into", options->into, "The pack's folder, replaced whole")->required();
  command->add_option("--cache", options->cache, "Where recordings are kept between builds");
  command->add_flag("--json", options->json, "One JSON document; progress goes to standard error");
  command->footer(footer);
  command->callback([options, streams] { run(*options, streams); });
}

}  // namespace tobrin
