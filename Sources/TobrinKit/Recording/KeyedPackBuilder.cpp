#include "Recording/KeyedPackBuilder.h"

#include <array>
#include <cassert>
#include <map>
#include <vector>

#include "Base/PackError.h"
#include "Building/TakeWriter.h"
#include "Packs/PackManifest.h"

namespace tobrin {
namespace {

using Group = PackManifest::Group;

/// Where a group without takes finds others: keys of its size first.
constexpr std::array<std::array<KeyGroup, 4>, allKeyGroups.size()> nearest = {{
    {KeyGroup::modifier, KeyGroup::backspace, KeyGroup::enter, KeyGroup::space},
    {KeyGroup::enter, KeyGroup::backspace, KeyGroup::modifier, KeyGroup::alpha},
    {KeyGroup::backspace, KeyGroup::space, KeyGroup::modifier, KeyGroup::alpha},
    {KeyGroup::enter, KeyGroup::modifier, KeyGroup::alpha, KeyGroup::space},
    {KeyGroup::alpha, KeyGroup::backspace, KeyGroup::enter, KeyGroup::space},
}};

/// What was recorded of the group, or else of the one nearest to it that has any.
template <typename Files>
Files filesFor(KeyGroup group, const std::map<KeyGroup, Files>& recorded) {
  if (const auto own = recorded.find(group); own != recorded.end()) return own->second;
  for (const KeyGroup other : nearest[index(group)]) {
    if (const auto found = recorded.find(other); found != recorded.end()) return found->second;
  }
  return {};
}

PackManifest manifestOf(const KeyedPackText& text) {
  PackManifest manifest;
  manifest.formatVersion = 1;
  manifest.id = text.id;
  manifest.name = text.name;
  manifest.kind = text.kind;
  manifest.summary = text.summary;
  manifest.author = text.author;
  manifest.license = text.license;
  return manifest;
}

void writePack(const KeyedTakes& takes, const KeyedPackText& text, TakeWriter& writer) {
  std::map<KeyGroup, std::map<std::string, std::vector<std::string>>> down;
  std::map<KeyGroup, std::vector<std::string>> up;
  for (const auto& [group, tiers] : takes.down)
    down.emplace(group, writer.write(std::string(rawValue(group)), tiers));
  for (const auto& [group, list] : takes.up)
    up.emplace(group, writer.write(std::string(rawValue(group)) + "-up", list));
  PackManifest manifest = manifestOf(text);
  for (const KeyGroup group : allKeyGroups) {
    Group entry{filesFor(group, down), std::nullopt};
    if (!up.empty()) entry.up = filesFor(group, up);
    manifest.groups.emplace(rawValue(group), std::move(entry));
  }
  writer.write(manifest);
}

}  // namespace

double buildKeyedPack(const KeyedTakes& takes, const KeyedPackText& text,
                      const std::filesystem::path& into, const FolderExchange& exchange) {
  assert(takes.rate == recordedPackRate);
  if (takes.down.empty()) throw PackError::empty(text.id);
  PackFolder folder(PackFolder::replaceable(into));
  const WrittenPack written =
      writeLevelled(folder.aside(), [&](TakeWriter& writer) { writePack(takes, text, writer); });
  folder.moveIntoPlace(exchange);
  return written.loudness;
}

}  // namespace tobrin
