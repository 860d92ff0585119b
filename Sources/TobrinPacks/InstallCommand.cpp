#include <CLI/CLI.hpp>

#include "Base/ExchangeFolders.h"
#include "Commands.h"
#include "Evdev/KeyCodes.h"
#include "Importing/PackInstall.h"
#include "Packs/PackLibrary.h"
#include "PrintableText.h"
#include "System/SpawningProcessRunner.h"

namespace tobrin {
namespace {

void print(const PackInstall::Installed& pack, std::ostream& out) {
  for (const auto& note : pack.notes)
    out << printable(note.line()) << '\n';
  out << printable(pack.name + " (" + pack.id + ")") << (pack.isNew ? ": " : ", replaced: ")
      << printable(pack.folder.string()) << '\n';
}

/// All are checked before the first is put in place.
void run(const std::vector<std::string>& sources, const CommandStreams& streams) {
  const SpawningProcessRunner programs;
  const PackImport::Services services{virtualCodeOf, programs, exchangeFolders};
  const auto folder = userPacksDirectory();
  std::vector<std::unique_ptr<PackInstall>> packs;
  for (const std::string& source : sources)
    packs.push_back(std::make_unique<PackInstall>(source, folder, services));
  for (const auto& pack : packs)
    print(pack->moveIntoPlace(), streams.out);
}

constexpr const char* footer = R"(
FILE is a pack's folder, a .tobrinpack file, or a pack of another program as "tobrin-packs import"
takes it. A pack of yours with the same id is replaced, in one step; a Tobrin that runs plays the
new one from then on. Nothing is put in place where one of them cannot be loaded.

Examples:
  tobrin-packs install Downloads/mine.tobrinpack
  tobrin-packs install Downloads/*.zip
)";

}  // namespace

void addInstallCommand(CLI::App& app, const CommandStreams& streams) {
  const auto sources = std::make_shared<std::vector<std::string>>();
  auto* const command = app.add_subcommand("install", "Put packs among your own");
  command->add_option("FILE", *sources, "Folders, .tobrinpack files, archives")->required();
  command->footer(footer);
  command->callback([sources, streams] { run(*sources, streams); });
}

}  // namespace tobrin
