/// What the fuzzers share.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tobrin::fuzz {

/// Takes numbers off the bytes of a fuzzer; what is missing at the end reads as 0.
class Input {
 public:
  Input(const uint8_t* data, std::size_t size) : rest_(data, size) {}

  [[nodiscard]] bool empty() const { return rest_.empty(); }

  template <typename Number>
  Number take() {
    uint64_t number = 0;
    for (const uint8_t byte : bytes(sizeof(Number)))
      number = number << 8 | byte;
    return static_cast<Number>(number);
  }

  /// At most `count` bytes.
  std::span<const uint8_t> bytes(std::size_t count) {
    const auto taken = rest_.first(std::min(count, rest_.size()));
    rest_ = rest_.subspan(taken.size());
    return taken;
  }

  std::string text(std::size_t count) {
    const auto taken = bytes(count);
    return {taken.begin(), taken.end()};
  }

 private:
  std::span<const uint8_t> rest_;
};

inline std::string_view textOf(const uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

/// Ends the fuzzer where a promise does not hold, in every build.
inline void require(bool promise) {
  if (!promise) __builtin_trap();
}

/// A text must be refused by a `Refusal`, or read as a value that stays the same when written and
/// read.
template <typename Refusal, typename Read, typename Write>
void requireRoundTrip(std::string_view text, Read read, Write write) {
  std::optional<decltype(read(text))> value;
  try {
    value = read(text);
  } catch (const Refusal&) {
    return;
  }
  require(read(write(*value)) == *value);
}

}  // namespace tobrin::fuzz
