#include "Motion/HidReportDescriptor.h"

#include <array>
#include <vector>

#include "Force/MotionSource.h"

namespace tobrin {
namespace {

constexpr uint32_t vendorPage = 0xFF00;
constexpr uint32_t motionUsage = 3;

// An item's prefix byte without its size bits, as the HID standard numbers them.
enum class Tag : uint8_t {
  input = 0x80,
  collection = 0xA0,
  endCollection = 0xC0,
  usagePage = 0x04,
  reportSize = 0x74,
  reportId = 0x84,
  reportCount = 0x94,
  push = 0xA4,
  pop = 0xB4,
  usage = 0x08,
};

struct Globals {
  uint32_t usagePage = 0;
  uint32_t reportSize = 0;  // bits
  uint32_t reportCount = 0;
  uint8_t reportId = 0;
};

class Reader {
 public:
  void item(Tag tag, uint32_t value, std::size_t bytes);

  [[nodiscard]] std::optional<HidMotionReport> result() const {
    constexpr std::size_t length = MotionSource::reportBytes;
    if (!numbered_ && bits_[0] == 8 * length) return HidMotionReport{0, length, 0};
    for (std::size_t id = 1; numbered_ && id < bits_.size(); ++id) {
      const auto number = static_cast<uint8_t>(id);
      if (bits_[id] == 8 * length) return HidMotionReport{number, length + 1, 1};
      // The number itself may be the first of the 22 bytes.
      if (bits_[id] == 8 * (length - 1)) return HidMotionReport{number, length, 0};
    }
    return std::nullopt;
  }

 private:
  void openCollection();
  void addInput();

  Globals globals_;
  std::vector<Globals> saved_;
  uint32_t usage_ = 0;  // first since the last main item, page in the upper half; 0: none yet
  std::size_t depth_ = 0;
  bool inMotion_ = false;
  bool numbered_ = false;
  std::array<uint64_t, 256> bits_{};  // input bits of the motion collection, by report number
};

void Reader::item(Tag tag, uint32_t value, std::size_t bytes) {
  constexpr std::size_t deepest = 64;
  switch (tag) {
    case Tag::usagePage:
      globals_.usagePage = value;
      break;
    case Tag::reportSize:
      globals_.reportSize = value;
      break;
    case Tag::reportCount:
      globals_.reportCount = value;
      break;
    case Tag::reportId:
      globals_.reportId = static_cast<uint8_t>(value);
      numbered_ = true;
      break;
    case Tag::push:
      if (saved_.size() < deepest) saved_.push_back(globals_);
      break;
    case Tag::pop:
      if (saved_.empty()) break;
      globals_ = saved_.back();
      saved_.pop_back();
      break;
    case Tag::usage:
      if (usage_ == 0) usage_ = bytes == 4 ? value : globals_.usagePage << 16 | (value & 0xFFFF);
      break;
    case Tag::collection:
      openCollection();
      break;
    case Tag::endCollection:
      if (depth_ > 0) --depth_;
      usage_ = 0;
      break;
    case Tag::input:
      addInput();
      break;
    default:
      break;
  }
}

void Reader::openCollection() {
  if (depth_++ == 0) inMotion_ = usage_ == (vendorPage << 16 | motionUsage);
  usage_ = 0;
}

void Reader::addInput() {
  usage_ = 0;
  if (depth_ == 0 || !inMotion_) return;
  bits_[globals_.reportId] += static_cast<uint64_t>(globals_.reportSize) * globals_.reportCount;
}

}  // namespace

std::optional<HidMotionReport> findMotionReport(std::span<const uint8_t> descriptor) {
  constexpr uint8_t longItem = 0xFE;
  Reader reader;
  for (std::size_t at = 0; at < descriptor.size();) {
    const uint8_t prefix = descriptor[at++];
    if (prefix == longItem) {
      if (at >= descriptor.size()) break;
      at += std::size_t{2} + descriptor[at];
      continue;
    }
    const std::size_t bytes = (prefix & 3) == 3 ? 4 : prefix & 3;
    if (descriptor.size() - at < bytes) break;
    uint32_t value = 0;
    for (std::size_t i = 0; i < bytes; ++i)
      value |= uint32_t{descriptor[at + i]} << (8 * i);
    at += bytes;
    reader.item(static_cast<Tag>(prefix & 0xFC), value, bytes);
  }
  return reader.result();
}

}  // namespace tobrin
