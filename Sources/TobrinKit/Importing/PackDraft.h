/// A pack in memory, made of one recording a key: all strengths, brought to the loudness of built
/// packs, then written. Thread: any, one at a time.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "Importing/ImportNotes.h"
#include "Importing/TakeSet.h"
#include "Packs/PackManifest.h"

namespace tobrin {

class PackDraft final {
 public:
  /// `identity` is the manifest without its groups. Takes are shortened, or kept in one strength
  /// alone, where the pack would be too large to load; that is noted.
  PackDraft(PackManifest identity, TakeSet takes, ImportNotes& notes);

  /// Brings the typing demo to `target` LUFS and returns the loudness reached: less where takes
  /// would clip, minus infinity where nothing in it can be heard.
  double level(double target);

  /// Writes takes and manifest into an empty folder. Throws `std::filesystem::filesystem_error`.
  void write(const std::filesystem::path& folder) const;

  [[nodiscard]] const PackManifest& manifest() const { return manifest_; }
  [[nodiscard]] const TakeSet& takes() const { return takes_; }

 private:
  using Take = RecordedTake;

  void shorten(ImportNotes& notes);
  void addGroups();
  void addKeys();
  [[nodiscard]] double loudness() const;
  void scaleAll(float gain);

  PackManifest manifest_;
  TakeSet takes_;            // presses at the usual strength
  std::vector<Tier> tiers_;  // those that the pack gets
};

}  // namespace tobrin
