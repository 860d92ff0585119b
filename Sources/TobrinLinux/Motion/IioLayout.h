/// How one sample lies in the stream of an IIO device, and how to take its numbers out. Plain
/// values. Thread: any.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace tobrin {

/// One number of a frame, as the kernel describes it, for example "le:s16/32>>4".
struct IioScanType {
  bool bigEndian = false;
  bool isSigned = false;
  unsigned bits = 0;     ///< that count, 1 to 64
  unsigned storage = 0;  ///< bits taken: 8, 16, 32 or 64
  unsigned shift = 0;    ///< to the right, before masking

  bool operator==(const IioScanType&) const = default;

  /// Nothing where `text` is malformed or describes more than one number.
  static std::optional<IioScanType> parse(std::string_view text);

  /// `bytes` holds storage / 8 bytes. Bits beyond `bits` may hold anything.
  [[nodiscard]] int64_t decode(std::span<const uint8_t> bytes) const;
};

/// A frame of three axes and perhaps a time stamp. Each number lies at a multiple of its size,
/// in the order of the kernel's indices.
class IioLayout {
 public:
  enum Channel : std::size_t { x, y, z, stamp };
  static constexpr std::size_t channelCount = 4;

  struct Element {
    Channel channel = x;
    unsigned index = 0;
    IioScanType type;
  };

  struct Frame {
    std::array<int64_t, 3> axes{};
    std::optional<int64_t> stamp;  ///< nanoseconds
  };

  explicit IioLayout(std::vector<Element> elements);

  [[nodiscard]] std::size_t frameBytes() const { return frameBytes_; }

  /// `bytes` holds one frame.
  [[nodiscard]] Frame decode(std::span<const uint8_t> bytes) const;

 private:
  struct Placed {
    Element element;
    std::size_t offset = 0;
  };
  std::vector<Placed> placed_;
  std::size_t frameBytes_ = 0;
};

}  // namespace tobrin
