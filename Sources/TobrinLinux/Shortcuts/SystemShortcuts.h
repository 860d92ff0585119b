/// The key combinations the desktop itself uses, by its settings as they are now.
///
/// GNOME and its relatives keep them behind GSettings. Neither its D-Bus service (which only
/// writes) nor the desktop portal (which hides them) tells, and the stored form is private; the
/// `gsettings` program that comes with those desktops does, without a type system in our memory for
/// good. KDE keeps a readable file.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "Desktop/SessionKind.h"
#include "Input/Accelerator.h"

namespace tobrin {

/// Thread: main.
class SystemShortcuts final {
 public:
  explicit SystemShortcuts(Environment environment) : environment_(std::move(environment)) {}

  /// Empty where the desktop is another one or its settings cannot be read. Reads afresh whenever
  /// the settings have changed.
  const std::vector<Accelerator>& current();

 private:
  [[nodiscard]] bool isDesktop(std::string_view name) const;
  [[nodiscard]] std::filesystem::path configFolder() const;
  [[nodiscard]] std::string settingsListing() const;

  const Environment environment_;
  std::vector<Accelerator> accelerators_;
  std::filesystem::path readFrom_;                 // the file the answer follows from
  std::filesystem::file_time_type readVersion_{};  // of that file; its minimum where there is none
};

}  // namespace tobrin
