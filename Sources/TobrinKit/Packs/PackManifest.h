/// A pack's description as it stands in its "pack.json", and the summary the library lists. Plain
/// values, compared field by field. Thread: any.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tobrin {

struct PackManifest {
  static constexpr const char* fileName = "pack.json";

  /// Paths are relative to the pack folder; their order is the order of the variants.
  struct Group {
    std::map<std::string, std::vector<std::string>> down;  ///< tier name to press takes
    std::optional<std::vector<std::string>> up;            ///< release takes

    bool operator==(const Group&) const = default;
  };

  /// Takes of one key, as places in the lists of its group, counted from 0: several are played in
  /// turn, and an empty list is silence. Without a list the key plays as if the pack did not name
  /// it.
  struct Key {
    std::optional<std::vector<uint32_t>> down;
    std::optional<std::vector<uint32_t>> up;

    bool operator==(const Key&) const = default;
  };

  int64_t formatVersion = 1;
  std::string id;
  std::string name;
  std::string kind;
  std::optional<std::string> summary;
  std::optional<std::string> author;
  std::optional<std::string> license;
  std::map<std::string, Group> groups;  ///< keyed by key-group name
  std::map<uint16_t, Key> keyTakes{};  ///< by virtual key code; other keys play their group's takes

  bool operator==(const PackManifest&) const = default;

  /// Decodes JSON text. Throws `std::runtime_error` whose text names the key at fault.
  static PackManifest fromJson(std::string_view text);

  /// Decodes the "pack.json" of a folder. Throws `PackError` (missingManifest) where there is none,
  /// else what `fromJson` throws.
  static PackManifest read(const std::filesystem::path& directory);

  /// JSON text: pretty-printed, keys sorted at every level, "/" not escaped, absent fields left
  /// out.
  [[nodiscard]] std::string toJson() const;
};

struct PackInfo {
  std::string id;
  std::string name;
  std::string kind;
  std::optional<std::string> summary;
  std::filesystem::path directory;
  bool isBundled = false;

  bool operator==(const PackInfo&) const = default;

  /// Reads the folder's manifest. Throws `PackError` (missingManifest, invalidManifest).
  static PackInfo read(const std::filesystem::path& directory, bool isBundled);
};

}  // namespace tobrin
