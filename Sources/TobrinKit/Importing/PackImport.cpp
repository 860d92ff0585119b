#include "Importing/PackImport.h"

#include <algorithm>

#include "Building/RecordedPackBuilder.h"
#include "Importing/FormatReaders.h"
#include "Importing/PackDraft.h"
#include "Importing/PackIdentity.h"
#include "Importing/SoundLoader.h"
#include "Importing/SourceLicense.h"
#include "Importing/TakeSet.h"
#include "Importing/TemporaryFolder.h"
#include "Importing/Unpacking.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

/// The name that the source goes by, without an archive's extension.
std::string sourceName(const fs::path& source) {
  const fs::path path = fs::absolute(source).lexically_normal();
  if (fs::is_directory(path))
    return (path.has_filename() ? path : path.parent_path()).filename().string();
  return path.stem().string();
}

SourceFiles filesOf(const fs::path& source, const TemporaryFolder& folder, ImportNotes& notes) {
  return fs::is_directory(source) ? SourceFiles::ofFolder(source, notes)
                                  : unpack(source, folder.path(), notes);
}

std::optional<std::string> unlessEmpty(const std::string& text) {
  return text.empty() ? std::nullopt : std::optional(text);
}

PackManifest identityOf(const PackImport::Request& request, const ForeignPack& pack,
                        const SourceFiles& files) {
  PackManifest manifest;
  manifest.name = !request.name.empty() ? request.name
                  : !pack.name.empty()  ? pack.name
                                        : sourceName(request.source);
  // Ids of other programs are often running numbers, which say nothing.
  manifest.id = !request.id.empty() ? request.id : importedId(manifest.name);
  manifest.kind = "Imported";
  manifest.summary = unlessEmpty(pack.summary);
  manifest.author = unlessEmpty(pack.author);
  manifest.license = licenseOf(pack, files);
  return manifest;
}

PackImport::Result resultOf(const PackDraft& draft, const ForeignPack& pack) {
  PackImport::Result result;
  result.id = draft.manifest().id;
  result.name = draft.manifest().name;
  result.format = pack.format;
  for (const auto& [group, lists] : draft.takes().groups)
    result.takes[group] = lists.down.size();
  result.releases = draft.takes().releases.size();
  result.keys = draft.takes().keys.size();
  result.rate = static_cast<int>(SoundLoader::rate);
  return result;
}

}  // namespace

PackImport::Made PackImport::make(const Request& request, const Services& services,
                                  const Progress& progress) {
  constexpr double reading = 0.1;  // parts of the whole, roughly
  constexpr double cutting = 0.6;
  const auto report = [&](double fraction) {
    if (progress) progress(fraction);
  };
  ImportNotes notes;
  const TemporaryFolder unpacked;
  const SourceFiles files = filesOf(request.source, unpacked, notes);
  const ForeignPack pack = readForeignPack({files, services.keyCodes, notes});
  report(reading);
  SoundLoader loader(services.programs, notes);
  TakeSet takes =
      collectTakes(pack, loader, notes, [&](double part) { report(reading + cutting * part); });
  PackDraft draft(identityOf(request, pack, files), std::move(takes), notes);
  Result result = resultOf(draft, pack);
  result.lufs = draft.level(targetLoudness);
  report(reading + cutting);
  if (!namesLicense(draft.manifest())) notes.leftOut("a licence, which the source does not name");
  result.notes = notes.all();
  return {std::move(draft), std::move(result)};
}

PackImport::Result PackImport::run(const Request& request, const Services& services,
                                   const Progress& progress) {
  const fs::path target = PackFolder::replaceable(request.into);
  auto [draft, result] = make(request, services, progress);
  PackFolder folder(target);
  draft.write(folder.aside());
  folder.moveIntoPlace(services.exchange);
  result.folder = target;
  if (progress) progress(1);
  return result;
}

}  // namespace tobrin
