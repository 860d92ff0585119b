#include <CLI/CLI.hpp>
#include <algorithm>

#include "Base/PrintableText.h"
#include "Commands.h"
#include "JsonOutput.h"
#include "Packs/PackLibrary.h"
#include "Warnings.h"

namespace tobrin {
namespace {

constexpr std::size_t widestColumn = 40;

void printList(const std::vector<PackInfo>& packs, std::ostream& out) {
  std::size_t idWidth = 0;
  std::size_t nameWidth = 0;
  for (const PackInfo& pack : packs) {
    idWidth = std::max(idWidth, widthOf(pack.id));
    nameWidth = std::max(nameWidth, widthOf(pack.name));
  }
  const auto column = [&out](const std::string& text, std::size_t width) {
    const std::size_t filled = widthOf(text);
    width = std::min(width, widestColumn);
    out << printable(text) << std::string(filled < width ? width - filled : 0, ' ') << "  ";
  };
  for (const PackInfo& pack : packs) {
    column(pack.id, idWidth);
    column(pack.name, nameWidth);
    column(pack.isBundled ? "bundled" : "user", 7);
    out << printable(pack.kind) << "  " << printable(pack.directory.string()) << '\n';
  }
  if (packs.empty()) out << "No sound packs found.\n";
}

nlohmann::ordered_json asJson(const std::vector<PackInfo>& packs) {
  auto list = nlohmann::ordered_json::array();
  for (const PackInfo& pack : packs)
    list.push_back({{"id", pack.id},
                    {"name", pack.name},
                    {"kind", pack.kind},
                    {"bundled", pack.isBundled},
                    {"folder", pack.directory.string()}});
  return list;
}

void run(bool json, const CommandStreams& streams) {
  const auto [packs, unusable] = findPacks();
  if (json)
    printJson(asJson(packs), streams.out);
  else
    printList(packs, streams.out);
  for (const auto& [folder, reason] : unusable)
    warn(streams.err, folder.string() + " is no pack: " + reason);
}

constexpr const char* footer = R"(
Packs are looked for in the folder that TOBRIN_PACKS names (else the packs that come with the
program) and in Tobrin/Packs of your data folder, ~/.local/share unless XDG_DATA_HOME says so.
A pack of yours takes the place of a bundled one with the same id.

Examples:
  tobrin-packs list
  TOBRIN_PACKS=./Packs tobrin-packs list --json
)";

}  // namespace

void addListCommand(CLI::App& app, const CommandStreams& streams) {
  const auto json = std::make_shared<bool>(false);
  auto* const command = app.add_subcommand("list", "List the packs on this machine");
  command->add_flag("--json", *json, "One JSON document instead of a table");
  command->footer(footer);
  command->callback([json, streams] { run(*json, streams); });
}

}  // namespace tobrin
