#include "Packs/LoadedPack.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstdlib>

#include "Base/PackError.h"

namespace tobrin {
namespace {

using Contents = LoadedPack::Contents;
using TierLists = std::map<Tier, std::vector<std::size_t>>;

/// Each tier is this much louder than the next softer one that stands in for it.
constexpr float tierStep = 1.6f;

int distance(Tier a, Tier b) {
  return std::abs(static_cast<int>(a) - static_cast<int>(b));
}

/// The tier that plays for `wanted`: itself, else the nearest, the softer of two.
Tier nearest(const TierLists& tiers, Tier wanted) {
  // Tiers come in order, so that the first of equals is the softer one.
  return std::min_element(tiers.begin(), tiers.end(),
                          [wanted](const auto& a, const auto& b) {
                            return distance(a.first, wanted) < distance(b.first, wanted);
                          })
      ->first;
}

/// A tier that lists no take counts as absent, and so does a group without tiers.
void dropEmptyLists(Contents& contents) {
  for (auto& [group, tiers] : contents.down)
    std::erase_if(tiers, [](const auto& tier) { return tier.second.empty(); });
  std::erase_if(contents.down, [](const auto& group) { return group.second.empty(); });
  std::erase_if(contents.up, [](const auto& group) { return group.second.empty(); });
}

template <typename Lists>
const typename Lists::mapped_type* find(const Lists& lists, typename Lists::key_type key) {
  const auto found = lists.find(key);
  return found == lists.end() ? nullptr : &found->second;
}

uint64_t bytes(const SampleBuffer& buffer) {
  return uint64_t{buffer.frames()} * sizeof(float) * (buffer.isMono() ? 1 : 2);
}

std::vector<LoadedPack::Take> takes(const std::vector<std::unique_ptr<SampleBuffer>>& buffers,
                                    const std::vector<std::size_t>& list, float gain) {
  std::vector<LoadedPack::Take> result;
  result.reserve(list.size());
  for (const std::size_t entry : list)
    result.push_back({buffers.at(entry)->sample(), gain});
  return result;
}

}  // namespace

LoadedPack::LoadedPack(PackInfo info, PackManifest manifest, Contents contents)
    : info_(std::move(info)),
      manifest_(std::move(manifest)),
      buffers_(std::move(contents.buffers)) {
  dropEmptyLists(contents);
  const auto first = contents.down.begin();  // a mouse's group comes last
  if (first == contents.down.end() || first->first == KeyGroup::mouse)
    throw PackError::empty(manifest_.id);
  const TierLists* substitute = find(contents.down, KeyGroup::alpha);
  if (substitute == nullptr) substitute = &first->second;
  const auto* substituteUp = find(contents.up, KeyGroup::alpha);

  for (const KeyGroup group : allPackGroups) {
    if (group == KeyGroup::mouse && find(contents.down, group) == nullptr) continue;
    const TierLists* own = find(contents.down, group);
    const TierLists& tiers = own != nullptr ? *own : *substitute;
    for (const Tier wanted : allTiers) {
      const Tier chosen = nearest(tiers, wanted);
      const auto steps = static_cast<float>(static_cast<int>(wanted) - static_cast<int>(chosen));
      down_[index(group)][index(wanted)] =
          takes(buffers_, tiers.at(chosen), std::pow(tierStep, steps));
    }
    const auto* ownUp = find(contents.up, group);
    if (const auto* list = ownUp != nullptr ? ownUp : substituteUp)
      up_[index(group)] = takes(buffers_, *list, 1.0f);
  }
  for (const auto& buffer : buffers_)
    memoryBytes_ += bytes(*buffer);
}

LoadedPack::Layers LoadedPack::layers(KeyGroup group, std::size_t variant) const {
  Layers layers;
  for (std::size_t tier = 0; tier < tierCount; ++tier) {
    const std::vector<Take>& list = down_[index(group)][tier];
    assert(!list.empty());  // no gap is left once a pack is made
    const Take& take = list[variant % list.size()];
    layers.samples[tier] = take.sample;
    layers.gains[tier] = take.gain;
  }
  return layers;
}

std::optional<LoadedPack::Take> LoadedPack::release(KeyGroup group, std::size_t variant) const {
  const std::vector<Take>& list = up_[index(group)];
  if (list.empty()) return std::nullopt;
  return list[variant % list.size()];
}

std::size_t LoadedPack::variantCount(KeyGroup group) const {
  std::size_t count = 0;
  for (const auto& list : down_[index(group)])
    count = std::max(count, list.size());
  return count;
}

const LoadedPack::Variants* LoadedPack::pressVariants(uint16_t code) const {
  const PackManifest::Key* const key = find(manifest_.keyTakes, code);
  return key != nullptr && key->down ? &*key->down : nullptr;
}

const LoadedPack::Variants* LoadedPack::releaseVariants(uint16_t code) const {
  const PackManifest::Key* const key = find(manifest_.keyTakes, code);
  return key != nullptr && key->up ? &*key->up : nullptr;
}

bool LoadedPack::hasReleaseSounds() const {
  return std::any_of(up_.begin(), up_.end(), [](const auto& list) { return !list.empty(); });
}

std::size_t LoadedPack::takeCount(KeyGroup group, Tier tier) const {
  return down_[index(group)][index(tier)].size();
}

std::size_t LoadedPack::releaseCount(KeyGroup group) const {
  return up_[index(group)].size();
}

}  // namespace tobrin
