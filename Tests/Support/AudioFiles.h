/// Audio files as bytes: valid ones, and ones with false headers.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tobrin::testing {

/// What a WAV file's header claims; `dataBytes` only where it is to differ from the truth.
struct WavHeader {
  uint16_t channels = 1;
  uint32_t rate = 48000;
  int64_t dataBytes = -1;
};

namespace detail {
inline void put(std::string& bytes, uint64_t value, int count) {
  for (int i = 0; i < count; ++i)
    bytes.push_back(static_cast<char>((value >> (8 * i)) & 0xFF));
}

inline std::string wav(const WavHeader& header, int format, int sampleBytes,
                       const std::string& data) {
  const uint64_t claimed =
      header.dataBytes < 0 ? data.size() : static_cast<uint64_t>(header.dataBytes);
  const auto frameBytes = uint64_t{header.channels} * static_cast<uint64_t>(sampleBytes);
  std::string bytes = "RIFF";
  put(bytes, 36 + claimed, 4);
  bytes += "WAVEfmt ";
  put(bytes, 16, 4);
  put(bytes, static_cast<uint64_t>(format), 2);
  put(bytes, header.channels, 2);
  put(bytes, header.rate, 4);
  put(bytes, header.rate * frameBytes, 4);
  put(bytes, frameBytes, 2);
  put(bytes, 8 * static_cast<uint64_t>(sampleBytes), 2);
  bytes += "data";
  put(bytes, claimed, 4);
  return bytes + data;
}
}  // namespace detail

/// A 16-bit WAV file of interleaved samples.
inline std::string wav16(const WavHeader& header, const std::vector<int16_t>& samples) {
  std::string data;
  for (const int16_t sample : samples)
    detail::put(data, static_cast<uint16_t>(sample), 2);
  return detail::wav(header, 1, 2, data);
}

/// A 32-bit float WAV file of interleaved samples.
inline std::string wavFloat(const WavHeader& header, const std::vector<float>& samples) {
  const std::string data(reinterpret_cast<const char*>(samples.data()), samples.size() * 4);
  return detail::wav(header, 3, 4, data);
}

}  // namespace tobrin::testing
