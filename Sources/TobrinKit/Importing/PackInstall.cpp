#include "Importing/PackInstall.h"

#include <algorithm>

#include "Base/PackError.h"
#include "Importing/PackIdentity.h"
#include "Importing/SoundLoader.h"
#include "Importing/TemporaryFolder.h"
#include "Importing/Unpacking.h"
#include "Packs/PackLibrary.h"
#include "Packs/PackLoader.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;
using Kind = ImportError::Kind;

/// The description that lies least deep in folders; null where there is none.
const SourceFiles::File* manifestIn(const SourceFiles& files) {
  const SourceFiles::File* found = nullptr;
  const auto depth = [](const SourceFiles::File& file) {
    return std::ranges::count(file.name, '/');
  };
  for (const auto& file : files.all()) {
    const bool isManifest = fileOf(file.name) == PackManifest::fileName;
    if (isManifest && (found == nullptr || depth(file) < depth(*found))) found = &file;
  }
  return found;
}

PackManifest read(const SourceFiles::File& manifest) {
  const std::string text = SourceFiles::read(manifest, SourceFiles::mostBytes);
  try {
    return PackManifest::fromJson(text);
  } catch (const std::runtime_error& error) {
    throw PackError::invalidManifest(manifest.name, error.what());
  }
}

/// Copies the files of one folder of a source, under their names.
void copyFolder(const SourceFiles& files, std::string_view folder, const fs::path& into) {
  const std::string prefix = folder.empty() ? "" : std::string(folder) + "/";
  for (const auto& file : files.all()) {
    if (!file.name.starts_with(prefix)) continue;
    const fs::path copy = into / file.name.substr(prefix.size());
    fs::create_directories(copy.parent_path());
    // An archive may hold a name twice; its description, too, is the first of that name.
    fs::copy_file(file.path, copy, fs::copy_options::skip_existing);
  }
}

/// Where a pack goes: in place of the one with its id, else into a folder that is still free.
fs::path placeFor(const std::string& id, const fs::path& packsFolder) {
  fs::path place;
  for (const PackInfo& pack : discoverPacks(packsFolder, false))
    if (pack.id == id) place = pack.directory;  // of several the last is the one that plays
  if (!place.empty()) return place;
  const std::string name = folderNameOf(id);
  place = packsFolder / name;
  for (int number = 2; fs::exists(fs::symlink_status(place)); ++number)
    place = packsFolder / (name + "-" + std::to_string(number));
  return place;
}

}  // namespace

PackInstall::PackInstall(const fs::path& source, const fs::path& packsFolder,
                         const PackImport::Services& services, const PackImport::Progress& progress)
    : packsFolder_(packsFolder), services_(services) {
  const auto named = [&](Kind kind, const std::exception& error) {
    const fs::path bare = source.has_filename() ? source : source.parent_path();
    const std::string name = bare.filename().string();
    std::string text = error.what();
    // Errors of the copy that is prepared name its folder.
    const std::string aside = folder_ ? folder_->aside().filename().string() : name;
    if (const auto at = text.find(aside); at != std::string::npos)
      text.replace(at, aside.size(), name);
    return ImportError(kind, text.find(name) != std::string::npos ? text : name + ": " + text);
  };
  try {
    prepare(source, progress);
  } catch (const ImportError& error) {
    throw named(error.kind(), error);
  } catch (const PackError& error) {
    throw named(error.kind() == PackError::Kind::empty ? Kind::noSounds : Kind::unreadable, error);
  }
}

void PackInstall::prepare(const fs::path& source, const PackImport::Progress& progress) {
  if (!copyOwn(source)) import(source, progress);
  // Packs made here are checked too: one that cannot be loaded must never replace one that can.
  (void)loadPack(PackInfo::read(folder_->aside(), false), SoundLoader::rate);
}

/// False where the source is no pack of ours.
bool PackInstall::copyOwn(const fs::path& source) {
  ImportNotes notes;
  const TemporaryFolder unpacked;
  const SourceFiles files = fs::is_directory(source) ? SourceFiles::ofFolder(source, notes)
                                                     : unpack(source, unpacked.path(), notes);
  const SourceFiles::File* const manifest = manifestIn(files);
  if (manifest == nullptr) return false;
  const PackManifest description = read(*manifest);
  choosePlace(description.id, description.name);
  copyFolder(files, folderOf(manifest->name), folder_->aside());
  return true;
}

void PackInstall::import(const fs::path& source, const PackImport::Progress& progress) {
  auto [draft, result] =
      PackImport::make({.source = source, .into = {}, .id = {}, .name = {}}, services_, progress);
  choosePlace(result.id, result.name);
  installed_.notes = std::move(result.notes);
  draft.write(folder_->aside());
}

void PackInstall::choosePlace(const std::string& id, const std::string& name) {
  const fs::path place = placeFor(id, packsFolder_);
  installed_.id = id;
  installed_.name = name;
  installed_.folder = place;
  folder_ = std::make_unique<PackFolder>(place);
}

PackInstall::Installed PackInstall::moveIntoPlace() {
  installed_.isNew = !fs::exists(installed_.folder);
  folder_->moveIntoPlace(services_.exchange);
  folder_.reset();  // with the old pack, where there was one
  return installed_;
}

}  // namespace tobrin
