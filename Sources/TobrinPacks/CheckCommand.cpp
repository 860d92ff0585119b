#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <span>

#include "Base/PrintableText.h"
#include "Commands.h"
#include "InputFile.h"
#include "JsonOutput.h"
#include "PackArgument.h"
#include "Packs/PackLoader.h"
#include "Warnings.h"

namespace tobrin {
namespace {

struct Options {
  std::string folder;
  bool json = false;
};

constexpr double engineRate = 48000;
constexpr const char* release = "up";

/// Which takes of a group are the pack's own; all others replace what it leaves out.
class OwnTakes {
 public:
  explicit OwnTakes(const PackManifest& manifest) : groups_(manifest.groups) {}

  [[nodiscard]] bool has(KeyGroup group, Tier tier) const {
    const auto found = groups_.find(std::string(rawValue(group)));
    if (found == groups_.end()) return false;
    return std::any_of(found->second.down.begin(), found->second.down.end(), [&](const auto& own) {
      return tierNamed(own.first) == tier && !own.second.empty();
    });
  }
  [[nodiscard]] bool hasReleases(KeyGroup group) const {
    const auto found = groups_.find(std::string(rawValue(group)));
    return found != groups_.end() && found->second.up && !found->second.up->empty();
  }

 private:
  const std::map<std::string, PackManifest::Group>& groups_;
};

/// Those of a keyboard, and of a mouse where the pack has one.
std::span<const KeyGroup> groupsOf(const LoadedPack& pack) {
  return std::span(allPackGroups)
      .first(pack.hasSounds(KeyGroup::mouse) ? allPackGroups.size() : allKeyGroups.size());
}

/// "space.soft", "space.up" and so on.
nlohmann::ordered_json substitutes(const LoadedPack& pack) {
  const OwnTakes own(pack.manifest());
  auto list = nlohmann::ordered_json::array();
  for (const KeyGroup group : groupsOf(pack)) {
    const std::string prefix = std::string(rawValue(group)) + ".";
    for (const Tier tier : allTiers)
      if (!own.has(group, tier)) list.push_back(prefix + std::string(name(tier)));
    if (pack.releaseCount(group) > 0 && !own.hasReleases(group)) list.push_back(prefix + release);
  }
  return list;
}

nlohmann::ordered_json asJson(const LoadedPack& pack) {
  nlohmann::ordered_json groups;
  for (const KeyGroup group : groupsOf(pack)) {
    nlohmann::ordered_json down;
    for (const Tier tier : allTiers)
      down[std::string(name(tier))] = pack.takeCount(group, tier);
    groups[std::string(rawValue(group))] = {{"down", down}, {release, pack.releaseCount(group)}};
  }
  return {{"id", pack.info().id},
          {"name", pack.info().name},
          {"kind", pack.info().kind},
          {"groups", groups},
          {"substituted", substitutes(pack)},
          {"sampleCount", pack.sampleCount()},
          {"memoryBytes", pack.memoryBytes()}};
}

void printTable(const LoadedPack& pack, std::ostream& out) {
  const PackInfo& info = pack.info();
  out << printable(info.name + " (" + info.id + ", " + info.kind + ")") << '\n';
  out << std::left << std::setw(12) << "group" << std::right;
  for (const Tier tier : allTiers)
    out << std::setw(8) << name(tier);
  out << std::setw(8) << release << '\n';
  const OwnTakes own(pack.manifest());
  const auto cell = [&out](std::size_t count, bool isOwn) {
    const std::string number = std::to_string(count);
    out << std::setw(8) << (isOwn || count == 0 ? number : "(" + number + ")");
  };
  for (const KeyGroup group : groupsOf(pack)) {
    out << std::left << std::setw(12) << rawValue(group) << std::right;
    for (const Tier tier : allTiers)
      cell(pack.takeCount(group, tier), own.has(group, tier));
    cell(pack.releaseCount(group), own.hasReleases(group));
    out << '\n';
  }
  out << pack.sampleCount() << " files, " << pack.memoryBytes() << " bytes decoded\n";
}

void run(const Options& options, const CommandStreams& streams) {
  const PackInfo info = PackInfo::read(packFolder(options.folder), false);
  const std::string manifest = (info.directory / PackManifest::fileName).string();
  warnOfUnknownNames(manifest, readInputFile(manifest), exampleManifest(), streams.err);
  const auto pack = loadPack(info, engineRate);
  if (options.json)
    printJson(asJson(*pack), streams.out);
  else
    printTable(*pack, streams.out);
}

constexpr const char* footer = R"(
Groups and tiers that the pack leaves out are listed with the takes that stand in for them, in
parentheses.

Examples:
  tobrin-packs check ~/.local/share/Tobrin/Packs/mine
  tobrin-packs check mine --json
)";

}  // namespace

void addCheckCommand(CLI::App& app, const CommandStreams& streams) {
  const auto options = std::make_shared<Options>();
  auto* const command =
      app.add_subcommand("check", "Load a pack and list its takes, or say why it does not load");
  command->add_option("PACKDIR", options->folder, "The pack's folder, or its id in 'list'")
      ->required();
  command->add_flag("--json", options->json, "One JSON document instead of a table");
  command->footer(footer);
  command->callback([options, streams] { run(*options, streams); });
}

}  // namespace tobrin
