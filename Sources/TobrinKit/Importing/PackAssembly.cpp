#include "Importing/PackAssembly.h"

#include <algorithm>
#include <charconv>

namespace tobrin {
namespace {

constexpr unsigned mostAlternatives = 100;

/// "a{2-4}b" as "a", 2, 4 and "b".
struct Pattern {
  std::string_view before;
  unsigned first = 0;
  unsigned last = 0;
  std::string_view after;
};

std::optional<unsigned> number(std::string_view text) {
  unsigned value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  const bool isWhole = error == std::errc() && end == text.data() + text.size();
  return isWhole ? std::optional(value) : std::nullopt;
}

std::optional<Pattern> patternIn(std::string_view name) {
  const auto open = name.find('{');
  const auto close = name.find('}', open == std::string_view::npos ? 0 : open);
  if (open == std::string_view::npos || close == std::string_view::npos) return std::nullopt;
  const std::string_view inside = name.substr(open + 1, close - open - 1);
  const auto dash = inside.find('-');
  if (dash == std::string_view::npos) return std::nullopt;
  const auto first = number(inside.substr(0, dash));
  const auto last = number(inside.substr(dash + 1));
  if (!first || !last || *last < *first || *last - *first >= mostAlternatives) return std::nullopt;
  return Pattern{name.substr(0, open), *first, *last, name.substr(close + 1)};
}

}  // namespace

const SourceFiles::File* PackAssembly::file(std::string_view name) const {
  const SourceFiles::File* const found = context_.files.find(folder_, name);
  if (found == nullptr) context_.notes.leftOut("files that are not there", std::string(name));
  return found;
}

std::vector<SoundRef> PackAssembly::sounds(std::string_view name) const {
  std::vector<SoundRef> found;
  const auto pattern = patternIn(name);
  if (!pattern) {
    if (const auto* only = file(name)) found.push_back({only, std::nullopt});
    return found;
  }
  for (unsigned i = pattern->first; i <= pattern->last; ++i) {
    const std::string each = std::string(pattern->before) + std::to_string(i);
    if (const auto* one = file(each + std::string(pattern->after)))
      found.push_back({one, std::nullopt});
  }
  return found;
}

std::optional<uint16_t> PackAssembly::key(std::optional<uint16_t> kernelKey,
                                          const std::string& name) const {
  if (!kernelKey) {
    context_.notes.leftOut("keys that are not known", name);
    return std::nullopt;
  }
  const auto code = context_.keyCodes(*kernelKey);
  if (!code) context_.notes.leftOut("keys that play no sound here, such as those for media", name);
  return code;
}

bool hasSounds(const ForeignPack& pack) {
  return !pack.others.down.empty() ||
         std::ranges::any_of(pack.keys, [](const auto& key) { return !key.second.down.empty(); });
}

}  // namespace tobrin
