#include <CLI/CLI.hpp>
#include <cmath>
#include <cstdio>

#include "Base/ExchangeFolders.h"
#include "Base/PrintableText.h"
#include "Commands.h"
#include "Evdev/KeyCodes.h"
#include "Importing/PackImport.h"
#include "JsonOutput.h"
#include "Progress.h"
#include "System/SpawningProcessRunner.h"

namespace tobrin {
namespace {

struct Options {
  std::string source;
  std::string into;
  std::string id;
  std::string name;
  bool json = false;
};

nlohmann::ordered_json asJson(const PackImport::Result& result) {
  auto groups = nlohmann::ordered_json::object();
  for (const auto& [group, takes] : result.takes)
    groups[std::string(rawValue(group))] = takes;
  auto notes = nlohmann::ordered_json::array();
  for (const auto& note : result.notes)
    notes.push_back({{"kind", note.kind == ImportNotes::Kind::leftOut ? "left out" : "guessed"},
                     {"what", note.reason},
                     {"items", note.items}});
  const auto lufs = std::isfinite(result.lufs) ? nlohmann::ordered_json(result.lufs) : nullptr;
  return {{"id", result.id},          {"name", result.name}, {"format", result.format},
          {"path", result.folder},    {"groups", groups},    {"releases", result.releases},
          {"keys", result.keys},      {"rate", result.rate}, {"lufs", lufs},
          {"notes", std::move(notes)}};
}

void print(const PackImport::Result& result, std::ostream& out) {
  for (const auto& note : result.notes)
    out << printable(note.line()) << '\n';
  out << printable(result.name + " (" + result.id + "), from " + result.format) << '\n';
  for (const auto& [group, takes] : result.takes)
    out << rawValue(group) << ' ' << takes << ", ";
  char numbers[64];
  (void)std::snprintf(numbers, sizeof numbers, "; %d Hz, %.1f LUFS", result.rate, result.lufs);
  out << "releases " << result.releases << numbers << '\n';
}

void run(const Options& options, const CommandStreams& streams) {
  Progress progress(streams.err, "importing");
  const SpawningProcessRunner programs;
  const auto result = PackImport::run(
      {.source = options.source, .into = options.into, .id = options.id, .name = options.name},
      {virtualCodeOf, programs, exchangeFolders}, [&](double part) { progress.show(part); });
  if (options.json)
    printJson(asJson(result), streams.out);
  else
    print(result, streams.out);
}

constexpr const char* footer = R"(
SOURCE is a folder or an archive (zip, tar, 7z) that holds a pack with a config.json, a profile.yaml,
or two files a key. What cannot be used is left out and named; the pack is brought to the loudness
of built ones, and soft and hard strokes are made of its sounds. A failed import leaves DIR as it was.

Examples:
  tobrin-packs import Downloads/pack.zip --into ~/.local/share/Tobrin/Packs/mine
  tobrin-packs import pack --into mine --name "My keyboard" --json
)";

}  // namespace

void addImportCommand(CLI::App& app, const CommandStreams& streams) {
  const auto options = std::make_shared<Options>();
  auto* const command =
      app.add_subcommand("import", "Make a pack of one in another program's format");
  command->add_option("SOURCE", options->source, "A folder or an archive")->required();
  command->add_option("--into", options->into, "The pack's folder, replaced whole")->required();
  command->add_option("--id", options->id, "The pack's id, in place of one made of its name");
  command->add_option("--name", options->name, "The pack's name, instead of the one that it has");
  command->add_flag("--json", options->json, "One JSON document, with all that was left out");
  command->footer(footer);
  command->callback([options, streams] { run(*options, streams); });
}

}  // namespace tobrin
