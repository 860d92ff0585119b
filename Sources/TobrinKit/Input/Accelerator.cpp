#include "Input/Accelerator.h"

#include <cassert>
#include <utility>

#include "Base/LowerCase.h"

namespace tobrin {
namespace {

struct Name {
  std::string_view text;
  uint32_t modifier;
};
constexpr Name gtkModifiers[] = {
    {"control", Modifiers::control}, {"ctrl", Modifiers::control}, {"ctl", Modifiers::control},
    {"primary", Modifiers::control}, {"alt", Modifiers::option},   {"mod1", Modifiers::option},
    {"shift", Modifiers::shift},     {"shft", Modifiers::shift},   {"super", Modifiers::command},
    {"mod4", Modifiers::command},    {"meta", Modifiers::option}};
constexpr Name qtModifiers[] = {{"ctrl", Modifiers::control},
                                {"alt", Modifiers::option},
                                {"shift", Modifiers::shift},
                                {"meta", Modifiers::command}};

/// Other words for what X11 names differently.
constexpr std::pair<std::string_view, std::string_view> otherNames[] = {
    {"esc", "escape"},   {"pgup", "prior"},     {"page_up", "prior"},  {"pgdown", "next"},
    {"pgdn", "next"},    {"page_down", "next"}, {"del", "delete"},     {"ins", "insert"},
    {"enter", "return"}, {"sysreq", "print"},   {"above_tab", "grave"}};

std::string canonicalKey(std::string_view text) {
  std::string key = lowerCase(text);
  for (const auto& [other, name] : otherNames) {
    if (key == other) return std::string(name);
  }
  return key;
}

/// Adds the modifier of that name; false where there is none.
template <std::size_t count>
bool add(const Name (&names)[count], std::string_view text, Modifiers& modifiers) {
  const std::string wanted = lowerCase(text);
  for (const Name& name : names) {
    if (name.text != wanted) continue;
    modifiers.rawValue |= name.modifier;
    return true;
  }
  return false;
}

/// Calls `use` with each piece of `text` between separators.
template <typename Use>
void split(std::string_view text, std::string_view separator, const Use& use) {
  assert(!separator.empty());
  for (;;) {
    const std::size_t end = text.find(separator);
    use(text.substr(0, end));
    if (end == std::string_view::npos) return;
    text.remove_prefix(end + separator.size());
  }
}

/// The quoted texts of a line, without their quotes.
template <typename Use>
void eachQuoted(std::string_view line, const Use& use) {
  for (;;) {
    const std::size_t open = line.find_first_of("'\"");
    if (open == std::string_view::npos) return;
    const std::size_t close = line.find(line[open], open + 1);
    if (close == std::string_view::npos) return;
    use(line.substr(open + 1, close - open - 1));
    line.remove_prefix(close + 1);
  }
}

/// The first element of a list separated by commas; "\\," stands for a comma within an element.
std::string firstOfList(std::string_view list) {
  std::string result;
  bool escaped = false;
  for (const char c : list) {
    if (c == ',' && !escaped) break;
    if (c == ',') result.pop_back();  // the last of its backslashes
    escaped = c == '\\';
    result += c;
    if (result.ends_with("\\\\")) result.pop_back();
  }
  return result;
}

}  // namespace

std::optional<Accelerator> Accelerator::fromGtk(std::string_view text) {
  Accelerator result;
  while (text.starts_with('<')) {
    const std::size_t close = text.find('>');
    if (close == std::string_view::npos) return std::nullopt;
    if (!add(gtkModifiers, text.substr(1, close - 1), result.modifiers)) return std::nullopt;
    text.remove_prefix(close + 1);
  }
  if (text.empty() || lowerCase(text) == "disabled") return std::nullopt;
  result.key = canonicalKey(text);
  return result;
}

std::optional<Accelerator> Accelerator::fromQt(std::string_view text) {
  Accelerator result;
  std::size_t plus = 0;
  // A plus sign may be the key itself, but a modifier always comes before it.
  while ((plus = text.find('+')) != std::string_view::npos && plus > 0) {
    if (!add(qtModifiers, text.substr(0, plus), result.modifiers)) return std::nullopt;
    text.remove_prefix(plus + 1);
  }
  if (text.empty() || lowerCase(text) == "none") return std::nullopt;
  result.key = canonicalKey(text);
  return result;
}

bool Accelerator::matches(const Hotkey& hotkey, const KeyNaming& naming) const {
  if (modifiers != hotkey.modifiers) return false;
  return key == canonicalKey(naming.symbol) || key == lowerCase(naming.label);
}

std::vector<Accelerator> acceleratorsInGsettings(std::string_view listing) {
  std::vector<Accelerator> result;
  split(listing, "\n", [&](std::string_view line) {
    eachQuoted(line, [&](std::string_view text) {
      if (auto accelerator = Accelerator::fromGtk(text)) result.push_back(*std::move(accelerator));
    });
  });
  return result;
}

std::vector<Accelerator> acceleratorsInKGlobalShortcuts(std::string_view file,
                                                        std::string_view own) {
  std::vector<Accelerator> result;
  split(file, "\n", [&](std::string_view line) {
    const std::size_t equals = line.find('=');
    const std::string_view name = line.substr(0, equals);
    if (equals == std::string_view::npos || name == "_k_friendly_name" || name.starts_with(own))
      return;
    split(firstOfList(line.substr(equals + 1)), "\\t", [&](std::string_view text) {
      if (auto accelerator = Accelerator::fromQt(text)) result.push_back(*std::move(accelerator));
    });
  });
  return result;
}

}  // namespace tobrin
