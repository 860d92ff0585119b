/// Finds the sound packs on the machine: those that ship with the application and the user's own.
/// Reads manifests only; audio is decoded when a pack is chosen. Thread: any.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "Base/Environment.h"
#include "Packs/PackManifest.h"

namespace tobrin {

/// Where the user's packs lie: "Tobrin/Packs" in the user's data folder, which need not exist.
/// Throws `std::runtime_error` where the system knows no home folder of the user.
std::filesystem::path userPacksDirectory(const Environment& environment = processEnvironment);

/// Where the shipped packs lie: the value of "TOBRIN_PACKS", unchecked, where it is set, else the
/// folder of the build tree or of the installation that this program is part of; nothing where
/// neither exists.
std::optional<std::filesystem::path> bundledPacksDirectory(
    const Environment& environment = processEnvironment);

/// A folder among the user's packs that holds none.
struct UnusableFolder {
  std::filesystem::path folder;
  std::string reason;  ///< as the pack error says it

  bool operator==(const UnusableFolder&) const = default;
};

struct FoundPacks {
  std::vector<PackInfo> packs{};
  std::vector<UnusableFolder> unusable{};  ///< by folder name

  bool operator==(const FoundPacks&) const = default;
};

/// All packs: shipped ones first, each kind by name as a file browser orders names. A user's pack
/// takes the place of a shipped one with the same id. The user's folders that cannot be read as
/// packs are listed apart.
FoundPacks findPacks(const Environment& environment = processEnvironment);

/// The packs alone.
std::vector<PackInfo> discoverPacks(const Environment& environment = processEnvironment);

/// The packs directly inside one folder, by folder name; none where it cannot be listed.
std::vector<PackInfo> discoverPacks(const std::filesystem::path& folder, bool isBundled);

}  // namespace tobrin
