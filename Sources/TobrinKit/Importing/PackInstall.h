/// Puts packs among the user's own: folders, exported packs and packs of other programs. Each is
/// checked as a whole before anything is put in place. Thread: any, one at a time.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "Importing/PackImport.h"

namespace tobrin {

class PackInstall final {
 public:
  struct Installed {
    std::string id;
    std::string name;
    std::filesystem::path folder;
    bool isNew = true;                       ///< false: in place of one with the same id
    std::vector<ImportNotes::Note> notes{};  ///< of a pack of another program
  };

  /// Reads and checks one pack and writes it next to its place in `packsFolder`, which need not
  /// exist. Throws `ImportError` that names the source, or the file system's own error.
  PackInstall(const std::filesystem::path& source, const std::filesystem::path& packsFolder,
              const PackImport::Services& services, const PackImport::Progress& progress = {});

  /// Puts the pack in place, in one step. To be called once. Throws
  /// `std::filesystem::filesystem_error`.
  Installed moveIntoPlace();

 private:
  void prepare(const std::filesystem::path& source, const PackImport::Progress& progress);
  bool copyOwn(const std::filesystem::path& source);
  void import(const std::filesystem::path& source, const PackImport::Progress& progress);
  void choosePlace(const std::string& id, const std::string& name);

  std::filesystem::path packsFolder_;
  PackImport::Services services_;
  Installed installed_;
  std::unique_ptr<PackFolder> folder_;  // next to its place until it is moved
};

}  // namespace tobrin
