#include "Motion/IioLayout.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <charconv>
#include <utility>

namespace tobrin {
namespace {

bool take(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

bool takeNumber(std::string_view& text, unsigned& number) {
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc()) return false;
  text.remove_prefix(static_cast<std::size_t>(stop - text.data()));
  return true;
}

std::size_t roundedUp(std::size_t offset, std::size_t step) {
  return (offset + step - 1) / step * step;
}

}  // namespace

std::optional<IioScanType> IioScanType::parse(std::string_view text) {
  IioScanType type;
  type.bigEndian = text.starts_with("be:");
  if (!take(text, "be:") && !take(text, "le:")) return std::nullopt;
  type.isSigned = text.starts_with("s");
  if (!take(text, "s") && !take(text, "u")) return std::nullopt;
  if (!takeNumber(text, type.bits) || !take(text, "/") || !takeNumber(text, type.storage))
    return std::nullopt;
  if (!take(text, ">>") || !takeNumber(text, type.shift) || !text.empty()) return std::nullopt;
  const bool whole = type.storage >= 8 && type.storage <= 64 && std::has_single_bit(type.storage);
  // Written without a sum, which could overflow.
  if (!whole || type.bits == 0 || type.bits > type.storage || type.shift > type.storage - type.bits)
    return std::nullopt;
  return type;
}

int64_t IioScanType::decode(std::span<const uint8_t> bytes) const {
  const std::size_t count = storage / 8;
  assert(bytes.size() >= count);
  uint64_t word = 0;
  for (std::size_t i = 0; i < count; ++i)
    word = word << 8 | bytes[bigEndian ? i : count - 1 - i];
  const unsigned unused = 64 - bits;
  const uint64_t top = word >> shift << unused;
  return isSigned ? std::bit_cast<int64_t>(top) >> unused : std::bit_cast<int64_t>(top >> unused);
}

IioLayout::IioLayout(std::vector<Element> elements) {
  std::sort(elements.begin(), elements.end(),
            [](const Element& a, const Element& b) { return a.index < b.index; });
  std::size_t widest = 1;
  for (const Element& element : elements) {
    const std::size_t bytes = element.type.storage / 8;
    const std::size_t offset = roundedUp(frameBytes_, bytes);
    placed_.push_back({element, offset});
    frameBytes_ = offset + bytes;
    widest = std::max(widest, bytes);
  }
  frameBytes_ = roundedUp(frameBytes_, widest);
}

IioLayout::Frame IioLayout::decode(std::span<const uint8_t> bytes) const {
  assert(bytes.size() >= frameBytes());
  Frame frame;
  for (const Placed& placed : placed_) {
    const IioScanType& type = placed.element.type;
    const int64_t number = type.decode(bytes.subspan(placed.offset, type.storage / 8));
    if (placed.element.channel == stamp)
      frame.stamp = number;
    else
      frame.axes[placed.element.channel] = number;
  }
  return frame;
}

}  // namespace tobrin
