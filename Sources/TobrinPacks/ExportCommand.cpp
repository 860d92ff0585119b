#include <CLI/CLI.hpp>

#include "Base/PrintableText.h"
#include "Commands.h"
#include "Importing/PackExport.h"
#include "Importing/SourceLicense.h"
#include "PackArgument.h"
#include "Warnings.h"

namespace tobrin {
namespace {

struct Options {
  std::string folder;
  std::string out;
};

void run(const Options& options, const CommandStreams& streams) {
  const PackManifest manifest = PackExport::run(packFolder(options.folder), options.out);
  if (!namesLicense(manifest))
    warn(streams.err, "nothing says under which licence the sounds of " + manifest.name +
                          " may be handed on: set \"license\" in its pack.json");
  streams.out << printable(options.out) << '\n';
}

constexpr const char* footer = R"(
The file is a zip of the pack's folder. A double click on it, or "tobrin-packs install", puts the
pack among one's own.

Examples:
  tobrin-packs export ~/.local/share/Tobrin/Packs/mine --out mine.tobrinpack
)";

}  // namespace

void addExportCommand(CLI::App& app, const CommandStreams& streams) {
  const auto options = std::make_shared<Options>();
  auto* const command = app.add_subcommand("export", "Write a pack as one file to hand on");
  command->add_option("PACKDIR", options->folder, "The pack's folder, or its id in 'list'")
      ->required();
  command->add_option("--out", options->out, "The file, FILE.tobrinpack")->required();
  command->footer(footer);
  command->callback([options, streams] { run(*options, streams); });
}

}  // namespace tobrin
