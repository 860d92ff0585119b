#include "Building/UnknownNames.h"

#include <algorithm>
#include <numeric>
#include <optional>

#include "Base/JsonFields.h"
#include "Base/KeyEvent.h"
#include "Building/PackRecipe.h"
#include "Packs/PackManifest.h"

namespace tobrin {
namespace {

using Json = nlohmann::json;

constexpr std::size_t longestName = 64;  // bytes; more is no misspelling
constexpr std::size_t lettersASlip = 3;  // of a name: a longer one may have more wrong

/// How many letters must be changed, left out, added or exchanged with their neighbour.
std::size_t distance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> beforeLast(b.size() + 1), last(b.size() + 1), row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    beforeLast = std::exchange(last, row);
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t changed = last[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      row[j] = std::min({changed, last[j] + 1, row[j - 1] + 1});
      const bool isExchanged = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (isExchanged) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
    }
  }
  return row.back();
}

/// The name in `known` that may have been meant.
std::optional<std::string> nearest(const std::string& name, const Json& known) {
  if (name.size() > longestName) return std::nullopt;
  std::optional<std::string> best;
  std::size_t least = std::max<std::size_t>(1, name.size() / lettersASlip) + 1;
  for (const auto& [each, value] : known.items()) {
    const std::size_t apart = distance(name, each);
    if (apart >= least) continue;
    least = apart;
    best = each;
  }
  return best;
}

/// Stands in an example for every key code.
constexpr const char* anyCode = "0";

bool isNumber(const std::string& name) {
  return std::ranges::all_of(name, [](char c) { return c >= '0' && c <= '9'; });
}

void compare(const Json& document, const Json& example, const std::string& place,
             std::vector<std::string>& lines) {
  if (document.is_array() && example.is_array() && !example.empty()) {
    for (std::size_t i = 0; i < document.size(); ++i)
      compare(document[i], example[0], place + "[" + std::to_string(i) + "]", lines);
    return;
  }
  if (!document.is_object() || !example.is_object()) return;
  const std::string prefix = place.empty() ? "" : place + ".";
  for (const auto& [name, value] : document.items()) {
    const std::string where = prefix + name;
    if (const auto known = example.find(name); known != example.end()) {
      compare(value, *known, where, lines);
      continue;
    }
    if (isNumber(name) && example.contains(anyCode)) {
      compare(value, example[anyCode], where, lines);
      continue;
    }
    if (const auto tier = tierNamed(name); tier && example.contains(tobrin::name(*tier))) continue;
    const auto meant = nearest(name, example);
    lines.push_back("\"" + where + "\" is not known and has no effect" +
                    (meant ? "; is it \"" + *meant + "\"?" : ""));
  }
}

}  // namespace

std::vector<std::string> unknownNames(std::string_view json, std::string_view example) {
  std::vector<std::string> lines;
  compare(parsedJson(json), parsedJson(example), "", lines);
  return lines;
}

std::string exampleRecipe() {
  PackRecipe recipe;
  recipe.sources.emplace_back();
  recipe.sources[0].start = 0;
  recipe.sources[0].end = 1;
  recipe.enterSources = recipe.sources;
  recipe.options.emplace();
  return recipe.toJson();
}

std::string exampleManifest() {
  PackManifest manifest;
  manifest.summary = manifest.author = manifest.license = "";
  PackManifest::Group group;
  for (const Tier tier : allTiers)
    group.down[std::string(name(tier))] = {};
  group.up.emplace();
  for (const KeyGroup each : allPackGroups)
    manifest.groups.emplace(rawValue(each), group);
  manifest.keyTakes[0] = {std::vector<uint32_t>(), std::vector<uint32_t>()};
  return manifest.toJson();
}

}  // namespace tobrin
