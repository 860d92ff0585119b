#include "Packs/PackLibrary.h"

#include <algorithm>
#include <map>
#include <stdexcept>

#include "Base/PackError.h"
#include "Base/SystemFolders.h"
#include "Base/UserFolders.h"
#include "Packs/NameOrder.h"

namespace tobrin {
namespace {

namespace fs = std::filesystem;

/// The locale that orders names, in the order in which the C library looks for it.
std::string orderingLocale(const Environment& environment) {
  for (const char* name : {"LC_ALL", "LC_COLLATE", "LANG"})
    if (auto value = environment(name); value && !value->empty()) return *std::move(value);
  return "C";
}

void sort(std::vector<PackInfo>& packs, const Environment& environment) {
  if (packs.size() < 2) return;
  const NameOrder order(orderingLocale(environment));
  std::sort(packs.begin(), packs.end(), [&](const PackInfo& a, const PackInfo& b) {
    if (a.isBundled != b.isBundled) return a.isBundled;
    if (order.isBefore(a.name, b.name)) return true;
    if (order.isBefore(b.name, a.name)) return false;
    return a.id < b.id;
  });
}

bool isHidden(const fs::path& entry) {
  return entry.filename().native().starts_with('.');
}

std::vector<fs::path> visibleEntries(const fs::path& folder) {
  std::vector<fs::path> entries;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error))
    if (!isHidden(entry->path())) entries.push_back(entry->path());
  std::sort(entries.begin(), entries.end());
  return entries;
}

/// `unusable` gets the folders that hold no pack; null: not wanted.
std::vector<PackInfo> packsIn(const fs::path& folder, bool isBundled,
                              std::vector<UnusableFolder>* unusable) {
  std::vector<PackInfo> packs;
  std::error_code missing;
  for (const fs::path& entry : visibleEntries(folder)) {
    try {
      packs.push_back(PackInfo::read(entry, isBundled));
    } catch (const PackError& error) {
      // No pack: other things may lie in the folder, too.
      if (unusable != nullptr && fs::is_directory(entry, missing))
        unusable->push_back({entry, error.what()});
    }
  }
  return packs;
}

}  // namespace

fs::path userPacksDirectory(const Environment& environment) {
  const fs::path data = dataFolder(environment);
  if (data.empty()) throw std::runtime_error("the system knows no home folder of this user");
  return data / "Tobrin/Packs";
}

std::optional<fs::path> bundledPacksDirectory(const Environment& environment) {
  if (const auto folder = environment("TOBRIN_PACKS")) return fs::path(*folder);
  std::error_code missing;
  const fs::path program = thisProgram().parent_path();
  for (const char* const place : {TOBRIN_BUILT_PACKS, TOBRIN_INSTALLED_PACKS}) {
    fs::path folder = (program / place).lexically_normal();
    if (fs::is_directory(folder, missing)) return folder;
  }
  return std::nullopt;
}

FoundPacks findPacks(const Environment& environment) {
  FoundPacks found;
  std::map<std::string, PackInfo> byID;
  const auto merge = [&byID](std::vector<PackInfo> packs) {
    for (PackInfo& pack : packs)
      byID.insert_or_assign(pack.id, std::move(pack));
  };
  if (const auto bundled = bundledPacksDirectory(environment)) merge(discoverPacks(*bundled, true));
  if (!dataFolder(environment).empty())
    merge(packsIn(userPacksDirectory(environment), false, &found.unusable));

  found.packs.reserve(byID.size());
  for (auto& [id, pack] : byID)
    found.packs.push_back(std::move(pack));
  sort(found.packs, environment);
  return found;
}

std::vector<PackInfo> discoverPacks(const Environment& environment) {
  return findPacks(environment).packs;
}

std::vector<PackInfo> discoverPacks(const fs::path& folder, bool isBundled) {
  return packsIn(folder, isBundled, nullptr);
}

}  // namespace tobrin
