#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "Base/PrintableText.h"
#include "Commands.h"
#include "Synth/PackGenerator.h"

namespace tobrin {
namespace {

struct Options {
  std::vector<std::string> ids;
  std::string folder;
  bool withMouse = false;
};

std::vector<std::string> starterIDs() {
  std::vector<std::string> ids;
  for (const SynthProfile& profile : SynthProfile::starterPacks())
    ids.push_back(profile.id);
  return ids;
}

void run(const Options& options, const CommandStreams& streams) {
  const auto isWanted = [&](const std::string& id) {
    return options.ids.empty() || std::ranges::find(options.ids, id) != options.ids.end();
  };
  const std::span<const KeyGroup> groups =
      options.withMouse ? std::span<const KeyGroup>(allPackGroups) : allKeyGroups;
  for (const SynthProfile& profile : SynthProfile::starterPacks())
    if (isWanted(profile.id))
      streams.out << printable(generatePack(profile, options.folder, groups).string()) << '\n';
}

constexpr const char* footer = R"(
A folder DIR/ID that is there already is removed first, with all that it holds.

Examples:
  tobrin-packs generate --into Packs
  tobrin-packs generate cream typewriter --into ~/.local/share/Tobrin/Packs
)";

}  // namespace

void addGenerateCommand(CLI::App& app, const CommandStreams& streams) {
  const auto options = std::make_shared<Options>();
  auto* const command = app.add_subcommand("generate", "Write the starter packs");
  command->add_option("ID", options->ids, "Which packs; all where none is named")
      ->check(CLI::IsMember(starterIDs()));
  command->add_option("--into", options->folder, "The folder that takes the packs' folders")
      ->required()
      ->type_name("DIR");
  command->add_flag("--mouse", options->withMouse, "Sounds of a mouse, too");
  command->footer(footer);
  command->callback([options, streams] { run(*options, streams); });
}

}  // namespace tobrin
