/// Packs made in memory, for tests that need one without files.
#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "Packs/LoadedPack.h"

namespace tobrin::testing {

/// A mono sound of one constant value.
inline std::unique_ptr<SampleBuffer> constantSound(float value, std::size_t frames,
                                                   double sampleRate = 48000) {
  return std::make_unique<SampleBuffer>(std::vector<float>(frames, value), std::span<const float>{},
                                        sampleRate);
}

/// Collects takes, then makes a pack of them.
class TestPack final {
 public:
  /// Adds a press take of `frames` samples of `value`.
  TestPack& down(KeyGroup group, Tier tier, float value, std::size_t frames = 480) {
    contents_.down[group][tier].push_back(add(value, frames));
    return *this;
  }
  /// Adds a release take.
  TestPack& up(KeyGroup group, float value, std::size_t frames = 480) {
    contents_.up[group].push_back(add(value, frames));
    return *this;
  }
  /// Says which takes a key plays.
  TestPack& key(uint16_t code, PackManifest::Key takes) {
    keyTakes_[code] = std::move(takes);
    return *this;
  }
  /// The pack; the collection is empty afterwards.
  std::shared_ptr<const LoadedPack> make(const std::string& id = "test") {
    PackManifest manifest;
    manifest.id = manifest.name = manifest.kind = id;
    manifest.keyTakes = std::exchange(keyTakes_, {});
    PackInfo info{.id = id, .name = id, .kind = id, .summary = {}, .directory = {}};
    return std::make_shared<const LoadedPack>(std::move(info), std::move(manifest),
                                              std::exchange(contents_, {}));
  }

  /// One take in every tier of `alpha` (0.1, 0.2, 0.3, 0.4) and one release (0.05); all groups play
  /// them.
  static std::shared_ptr<const LoadedPack> simple(std::size_t frames = 480) {
    return TestPack()
        .down(KeyGroup::alpha, Tier::soft, 0.1f, frames)
        .down(KeyGroup::alpha, Tier::medium, 0.2f, frames)
        .down(KeyGroup::alpha, Tier::hard, 0.3f, frames)
        .down(KeyGroup::alpha, Tier::slam, 0.4f, frames)
        .up(KeyGroup::alpha, 0.05f, frames)
        .make();
  }

 private:
  std::size_t add(float value, std::size_t frames) {
    contents_.buffers.push_back(constantSound(value, frames));
    return contents_.buffers.size() - 1;
  }
  LoadedPack::Contents contents_;
  std::map<uint16_t, PackManifest::Key> keyTakes_;
};

}  // namespace tobrin::testing
