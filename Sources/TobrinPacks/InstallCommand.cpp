#include <CLI/CLI.hpp>
#include <csignal>
#include <nlohmann/json.hpp>

#include "Base/ExchangeFolders.h"
#include "Base/PrintableText.h"
#include "Commands.h"
#include "Evdev/KeyCodes.h"
#include "Importing/PackInstall.h"
#include "Packs/PackLibrary.h"
#include "System/SpawningProcessRunner.h"

namespace tobrin {
namespace {

void print(const PackInstall::Installed& pack, std::ostream& out) {
  for (const auto& note : pack.notes)
    out << printable(note.line()) << '\n';
  out << printable(pack.name + " (" + pack.id + ")") << (pack.isNew ? ": " : ", replaced: ")
      << printable(pack.folder.string()) << '\n';
}

/// For the panel, in a line of JSON each: how far it has come, then the pack's id, or the reason
/// why there is none. If nobody reads the lines any more, the user has cancelled.
class Reporting final {
 public:
  explicit Reporting(std::ostream& out) : out_(out) {
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
  }

  void run(const std::string& source) {
    try {
      const SpawningProcessRunner programs;
      PackInstall pack(source, userPacksDirectory(), {virtualCodeOf, programs, exchangeFolders},
                       [this](double fraction) {
                         report({{"progress", fraction}});
                       });
      report({{"progress", 1}});
      report({{"id", pack.moveIntoPlace().id}});
    } catch (const ImportError& error) {
      report({{"kind", static_cast<int>(error.kind())}, {"reason", error.what()}});
    } catch (const std::filesystem::filesystem_error& error) {
      report({{"reason", error.code().message()}});
    } catch (const std::exception& error) {
      report({{"reason", error.what()}});
    }
  }

 private:
  void report(const nlohmann::json& line) {
    using Handling = nlohmann::json::error_handler_t;
    out_ << line.dump(-1, ' ', false, Handling::replace) << '\n' << std::flush;
    if (!out_) throw std::runtime_error("nobody reads");
  }

  std::ostream& out_;
};

/// All are checked before the first is put in place.
void run(const std::vector<std::string>& sources, const CommandStreams& streams) {
  const SpawningProcessRunner programs;
  const PackImport::Services services{virtualCodeOf, programs, exchangeFolders};
  const auto folder = userPacksDirectory();
  std::vector<std::unique_ptr<PackInstall>> packs;
  packs.reserve(sources.size());
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
  const auto reports = std::make_shared<bool>(false);
  auto* const command = app.add_subcommand("install", "Put packs among your own");
  command->add_option("FILE", *sources, "Folders, .tobrinpack files, archives")->required();
  command->footer(footer);
  command->add_flag("--report", *reports)->group("");  // not for people, so --help is silent
  command->callback([sources, reports, streams] {
    if (*reports) return Reporting(streams.out).run(sources->front());
    run(*sources, streams);
  });
}

}  // namespace tobrin
