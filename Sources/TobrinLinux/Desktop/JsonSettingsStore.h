/// The user's choices in one JSON file, replaced whole and atomically at every change, so that a
/// crash or a full disk leaves the old file. Thread: main.
#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "Engine/SettingsStore.h"

namespace tobrin {

class JsonSettingsStore final : public SettingsStore {
 public:
  /// Reads the file if it exists. One that cannot be read, or is no JSON object, is renamed to
  /// "*.broken" ("*.broken.2" and so on where there is one from before), which is logged, and the
  /// store starts empty. An empty path is one of a missing file.
  explicit JsonSettingsStore(std::filesystem::path file);

  [[nodiscard]] std::optional<std::string> read(std::string_view key) const override;
  bool write(std::string_view key, std::string_view json) override;
  void keepAside(std::string_view key) override;

 private:
  void load();
  void moveAside(const std::string& reason) const;
  [[nodiscard]] std::filesystem::path nameAside() const;
  void save() const;  // throws what went wrong

  std::filesystem::path file_;
  std::map<std::string, std::string, std::less<>> values_;  // key to JSON text
};

}  // namespace tobrin
