/// A pack decoded and ready to play: for every key group four tiers of press takes and the release
/// takes, all gaps filled at load time; the same for the mouse, where the pack has that group.
/// Never changes; the conductor and those that list packs share it. Its samples must outlive every
/// voice that plays them. Thread: any.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "Base/KeyEvent.h"
#include "Packs/PackManifest.h"
#include "Packs/SampleBuffer.h"
#include "TobrinMixer.h"

namespace tobrin {

class LoadedPack final {
 public:
  /// Most decoded audio of one pack, counted as stereo float at the output rate (96 MiB).
  static constexpr uint64_t memoryBudget = 100'663'296;

  struct Take {
    TBSample sample{};  ///< view into one of the pack's buffers
    float gain = 1.0f;  ///< linear; not 1 where the take stands in for another tier
  };

  /// The four takes that sound together for one press, in tier order.
  struct Layers {
    std::array<TBSample, tierCount> samples{};
    std::array<float, tierCount> gains{};
  };

  /// Decoded takes before the gaps are filled; the indices point into `buffers`.
  struct Contents {
    std::vector<std::unique_ptr<SampleBuffer>> buffers;
    std::map<KeyGroup, std::map<Tier, std::vector<std::size_t>>> down;
    std::map<KeyGroup, std::vector<std::size_t>> up;
  };

  /// Fills the gaps of decoded takes. Throws `PackError::empty` where no key has a press take.
  LoadedPack(PackInfo info, PackManifest manifest, Contents contents);
  LoadedPack(const LoadedPack&) = delete;
  LoadedPack& operator=(const LoadedPack&) = delete;

  /// Whether presses of the group have a sound: only those of `mouse` may have none.
  [[nodiscard]] bool hasSounds(KeyGroup group) const { return variantCount(group) > 0; }

  /// The takes of one press of a group that has sounds: in every tier entry `variant` modulo the
  /// tier's count.
  [[nodiscard]] Layers layers(KeyGroup group, std::size_t variant) const;

  /// The release take of a variant, where the group has any.
  [[nodiscard]] std::optional<Take> release(KeyGroup group, std::size_t variant) const;

  /// The largest number of takes among the group's tiers.
  [[nodiscard]] std::size_t variantCount(KeyGroup group) const;

  /// What the pack says about one key's presses or releases: the variants of its group that may
  /// play, none for silence; null where it says nothing.
  using Variants = std::vector<uint32_t>;
  [[nodiscard]] const Variants* pressVariants(uint16_t code) const;
  [[nodiscard]] const Variants* releaseVariants(uint16_t code) const;

  [[nodiscard]] bool hasReleaseSounds() const;
  [[nodiscard]] const PackInfo& info() const { return info_; }
  [[nodiscard]] const PackManifest& manifest() const { return manifest_; }
  /// Bytes of the distinct decoded files; mono files count one channel.
  [[nodiscard]] uint64_t memoryBytes() const { return memoryBytes_; }
  /// Number of distinct decoded files.
  [[nodiscard]] std::size_t sampleCount() const { return buffers_.size(); }
  /// Takes of one tier, and release takes, for listings.
  [[nodiscard]] std::size_t takeCount(KeyGroup group, Tier tier) const;
  [[nodiscard]] std::size_t releaseCount(KeyGroup group) const;

 private:
  using TierTakes = std::array<std::vector<Take>, tierCount>;

  PackInfo info_;
  PackManifest manifest_;
  std::vector<std::unique_ptr<SampleBuffer>> buffers_;
  std::array<TierTakes, allPackGroups.size()> down_;
  std::array<std::vector<Take>, allPackGroups.size()> up_;
  uint64_t memoryBytes_ = 0;
};

}  // namespace tobrin
