#include "CheckCommand.h"

#include <filesystem>
#include <iomanip>
#include <nlohmann/json.hpp>

#include "JsonOutput.h"
#include "Packs/LoadedPack.h"
#include "PrintableText.h"

namespace tobrin {
namespace {

struct Options {
  std::string folder;
  bool json = false;
};

constexpr double engineRate = 48000;

nlohmann::ordered_json asJson(const LoadedPack& pack) {
  nlohmann::ordered_json groups;
  for (const KeyGroup group : allKeyGroups) {
    nlohmann::ordered_json down;
    for (const Tier tier : allTiers)
      down[std::string(name(tier))] = pack.takeCount(group, tier);
    groups[std::string(rawValue(group))] = {{"down", down}, {"up", pack.releaseCount(group)}};
  }
  return {{"id", pack.info().id},
          {"name", pack.info().name},
          {"kind", pack.info().kind},
          {"groups", groups},
          {"sampleCount", pack.sampleCount()},
          {"memoryBytes", pack.memoryBytes()}};
}

void printTable(const LoadedPack& pack, std::ostream& out) {
  const PackInfo& info = pack.info();
  out << printable(info.name + " (" + info.id + ", " + info.kind + ")") << '\n';
  out << std::left << std::setw(12) << "group" << std::right;
  for (const Tier tier : allTiers)
    out << std::setw(8) << name(tier);
  out << std::setw(8) << "up" << '\n';
  for (const KeyGroup group : allKeyGroups) {
    out << std::left << std::setw(12) << rawValue(group) << std::right;
    for (const Tier tier : allTiers)
      out << std::setw(8) << pack.takeCount(group, tier);
    out << std::setw(8) << pack.releaseCount(group) << '\n';
  }
  out << pack.sampleCount() << " files, " << pack.memoryBytes() << " bytes decoded\n";
}

void run(const Options& options, const CommandStreams& streams) {
  const auto pack = LoadedPack::load(PackInfo::read(options.folder, false), engineRate);
  if (options.json)
    printJson(asJson(*pack), streams.out);
  else
    printTable(*pack, streams.out);
}

constexpr const char* footer = R"(
Groups and tiers that the pack leaves out are listed with the takes that stand in for them.

Examples:
  tobrin-packs check ~/.local/share/Tobrin/Packs/mine
  tobrin-packs check mine --json
)";

}  // namespace

void addCheckCommand(CLI::App& app, const CommandStreams& streams) {
  const auto options = std::make_shared<Options>();
  auto* const command =
      app.add_subcommand("check", "Load a pack and list its takes, or say why it does not load");
  command->add_option("PACKDIR", options->folder, "The pack's folder")->required();
  command->add_flag("--json", options->json, "One JSON document instead of a table");
  command->footer(footer);
  command->callback([options, streams] { run(*options, streams); });
}

}  // namespace tobrin
