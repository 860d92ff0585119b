/// Writes a pack from the takes of one's own keyboard. Thread: any.
#pragma once

#include <filesystem>
#include <string>

#include "Building/PackFolder.h"
#include "Recording/KeyedTakes.h"

namespace tobrin {

/// What the manifest says of the pack.
struct KeyedPackText {
  std::string id{};
  std::string name{};
  std::string kind{};
  std::string summary{};
  std::string author{};
  std::string license{};
};

/// Builds the pack into the folder `into`, levelled as built packs are; the folder is replaced
/// whole once the new pack is complete. A group without takes plays those of the one nearest to it.
/// Returns the loudness of its typing demo in LUFS. Throws `PackError` where there is no good
/// press, or the file system's own error.
double buildKeyedPack(const KeyedTakes& takes, const KeyedPackText& text,
                      const std::filesystem::path& into, const FolderExchange& exchange = {});

}  // namespace tobrin
