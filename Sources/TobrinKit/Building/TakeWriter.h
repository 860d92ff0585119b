/// Writes the takes of a pack that is made from recordings, at the loudness of such packs.
/// Thread: any.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "Building/RecordingSlicer.h"
#include "Packs/PackManifest.h"

namespace tobrin {

inline constexpr double recordedPackRate = 48000;  ///< Hz; of conversion, slicing and writing
inline constexpr double targetLoudness = -28.0;    ///< of the typing demo, LUFS

/// Writes files below one folder. All throw the file system's own error.
class TakeWriter final {
 public:
  /// `correction` is a gain for all takes; none grows louder than a take may be.
  TakeWriter(std::filesystem::path folder, float correction);

  /// Files PREFIX-1.wav and so on; returns their names.
  std::vector<std::string> write(const std::string& prefix, const std::vector<RecordedTake>& takes);
  /// Files PREFIX-TIER-1.wav and so on; returns their names by tier.
  std::map<std::string, std::vector<std::string>> write(const std::string& prefix,
                                                        const RecordedTiers& tiers);
  void write(const PackManifest& manifest) const;

  [[nodiscard]] std::size_t count() const { return count_; }  ///< of takes

 private:
  std::filesystem::path folder_;
  float correction_;
  std::size_t count_ = 0;
};

struct WrittenPack {
  std::size_t takes = 0;
  double loudness = 0;  ///< of the typing demo, LUFS
};

/// Calls `write`, which writes a whole pack, and once more with a gain where the typing demo is not
/// near `targetLoudness`.
WrittenPack writeLevelled(const std::filesystem::path& folder,
                          const std::function<void(TakeWriter&)>& write);

}  // namespace tobrin
