/// Keeps the user's choices from one run of the program to the next: JSON values under a few keys.
/// Thread: main.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tobrin {

class SettingsStore {
 public:
  virtual ~SettingsStore() = default;

  /// The JSON text kept under `key`, or nothing.
  [[nodiscard]] virtual std::optional<std::string> read(std::string_view key) const = 0;

  /// Keeps `json`, which must be valid JSON text, under `key`; false where it could not be saved
  /// (the reason is logged, and what was saved before stays).
  virtual bool write(std::string_view key, std::string_view json) = 0;

  /// Forgets the value kept under `key`, but puts it aside, so that nothing is lost.
  virtual void keepAside(std::string_view key) = 0;

  /// A text kept as a JSON string; nothing where there is none or it is of another type.
  [[nodiscard]] std::optional<std::string> readText(std::string_view key) const;
  bool writeText(std::string_view key, std::string_view text);
};

}  // namespace tobrin
