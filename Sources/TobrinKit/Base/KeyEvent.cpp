#include "Base/KeyEvent.h"

#include <algorithm>
#include <string>

#include "Base/LowerCase.h"

namespace tobrin {
namespace {

constexpr std::array<std::string_view, allPackGroups.size()> groupNames = {
    "alpha", "space", "enter", "backspace", "modifier", "mouse"};
constexpr std::array<std::string_view, tierCount> tierNames = {"soft", "medium", "hard", "slam"};

}  // namespace

std::string_view rawValue(KeyGroup group) {
  return groupNames[index(group)];
}

std::optional<KeyGroup> keyGroup(std::string_view rawValue) {
  const auto found = std::find(groupNames.begin(), groupNames.end(), rawValue);
  if (found == groupNames.end()) return std::nullopt;
  return allPackGroups[static_cast<std::size_t>(found - groupNames.begin())];
}

std::string_view name(Tier tier) {
  return tierNames[index(tier)];
}

std::optional<Tier> tier(int64_t rawValue) {
  if (rawValue < 0 || rawValue >= static_cast<int64_t>(tierCount)) return std::nullopt;
  return allTiers[static_cast<std::size_t>(rawValue)];
}

std::optional<Tier> tierNamed(std::string_view name) {
  const std::string wanted = lowerCase(name);
  const auto found = std::find(tierNames.begin(), tierNames.end(), wanted);
  if (found == tierNames.end()) return std::nullopt;
  return allTiers[static_cast<std::size_t>(found - tierNames.begin())];
}

}  // namespace tobrin
