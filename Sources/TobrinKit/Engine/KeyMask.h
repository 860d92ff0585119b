/// Gives each stroke the sound of another key of its group, drawn at random. Take, pitch and place
/// are otherwise the key's own at every press, so that a recording of them tells what was typed.
/// When a key is pressed still shows, and so does its group. Thread: conductor.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "Base/KeyEvent.h"
#include "Base/SplitMix64.h"
#include "Packs/LoadedPack.h"

namespace tobrin {

class KeyMask final {
 public:
  /// `seed` must be impossible to guess, as the draws can be repeated with it.
  explicit KeyMask(uint64_t seed) : rng_(seed) {}

  void setOn(bool on) { isOn_ = on; }
  /// From now on keys that `pack` keeps silent are never drawn.
  void setPack(const LoadedPack& pack);

  /// The key whose sound a stroke of this key gets: the key itself while the mask is off.
  [[nodiscard]] uint16_t soundOf(uint16_t code);

 private:
  bool isOn_ = false;
  SplitMix64 rng_;
  std::array<std::vector<uint16_t>, allPackGroups.size()> sounding_;  // codes of each group
};

}  // namespace tobrin
