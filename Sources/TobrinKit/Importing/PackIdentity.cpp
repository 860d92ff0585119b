#include "Importing/PackIdentity.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "Base/LowerCase.h"
#include "Synth/SynthProfile.h"

namespace tobrin {
namespace {

constexpr std::size_t longestId = 60;

bool isPlain(char c) {
  return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
}

std::string hashed(std::string_view text) {
  uint32_t hash = 2166136261;  // FNV-1a
  for (const char c : text)
    hash = (hash ^ static_cast<unsigned char>(c)) * 16777619;
  char digits[16];
  (void)std::snprintf(digits, sizeof digits, "%08x", static_cast<unsigned>(hash));
  return digits;
}

}  // namespace

std::string plainId(std::string_view text) {
  std::string id;
  for (const char c : lowerCase(text)) {
    if (isPlain(c))
      id += c;
    else if (!id.empty() && id.back() != '-')
      id += '-';
    if (id.size() == longestId) break;
  }
  while (id.ends_with('-'))
    id.pop_back();
  return id.empty() ? "pack-" + hashed(text) : id;
}

std::string importedId(std::string_view text) {
  const std::string id = plainId(text);
  const auto shipped = SynthProfile::starterPacks();
  const bool isTaken =
      std::ranges::any_of(shipped, [&](const SynthProfile& profile) { return profile.id == id; });
  return isTaken ? id + "-imported" : id;
}

std::string folderNameOf(std::string_view id) {
  const std::string plain = plainId(id);
  return plain == id ? plain : plain + "-" + hashed(id);
}

}  // namespace tobrin
