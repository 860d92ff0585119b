#include "Engine/KeyMask.h"

#include "Input/KeyLayout.h"

namespace tobrin {

namespace {

constexpr uint16_t codeCount = 128;

bool isSilent(const LoadedPack::Variants* takes) {
  return takes != nullptr && takes->empty();
}

}  // namespace

void KeyMask::setPack(const LoadedPack& pack) {
  sounding_ = {};
  for (uint16_t code = 0; code < codeCount; ++code)
    if (keyColumn(code) && !isSilent(pack.pressVariants(code)))
      sounding_[index(keyGroupOf(code))].push_back(code);
}

uint16_t KeyMask::soundOf(uint16_t code) {
  const std::vector<uint16_t>& others = sounding_[index(keyGroupOf(code))];
  if (!isOn_ || others.empty()) return code;
  return others[static_cast<std::size_t>(rng_.next() % others.size())];
}

}  // namespace tobrin
