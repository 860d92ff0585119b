/// Which recordings a pack is built from, and how they are sliced. A JSON document. Thread: any.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Building/SlicerOptions.h"

namespace tobrin {

struct PackRecipe {
  /// One recording, published or the user's own.
  struct Source {
    /// Its number; two sources with one number are the same recording. Negative for the user's own,
    /// which has no page.
    int64_t freesoundID = 0;
    std::string user;  ///< its author
    std::string title;
    std::string license;
    std::string previewURL;       ///< what is fetched: an http, https or file address, or a path
    std::optional<double> start;  ///< seconds; absent: from the beginning
    std::optional<double> end;    ///< seconds; absent: to the end

    bool operator==(const Source&) const = default;

    /// The recording's file on this machine; nothing for a published one.
    [[nodiscard]] std::optional<std::filesystem::path> file() const;
    /// The published recording's page: the site's address, "/s/", the number, "/".
    [[nodiscard]] std::string pageURL() const;
    /// Title, author, page and licence in one line; without the page where it has none.
    [[nodiscard]] std::string creditLine() const;
  };

  std::string id;
  std::string name;
  std::string kind;
  std::string summary;
  std::vector<Source> sources;
  std::optional<std::vector<Source>> enterSources;  ///< for the return key alone
  std::optional<SlicerOptions> options;

  bool operator==(const PackRecipe&) const = default;

  /// All recordings, each number once, in order of first mention.
  [[nodiscard]] std::vector<Source> credits() const;
  /// The pack's licence text: every recording's credit line.
  [[nodiscard]] std::string licenseText() const;

  /// Replaces relative paths of recordings by paths below `folder`, where the recipe lies.
  void resolvePaths(const std::filesystem::path& folder);

  /// Whether a JSON document is a recipe rather than slicer options alone. Throws `RecipeError`.
  static bool isOne(std::string_view text);
  /// Throws `RecipeError` that names the key at fault and what is wrong with it.
  static PackRecipe fromJson(std::string_view text);
  [[nodiscard]] std::string toJson() const;
};

}  // namespace tobrin
