#include "Packs/WAVWriter.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "Base/AtomicFile.h"
#include "Base/SplitMix64.h"

namespace tobrin {
namespace {

using Channel = std::span<const float>;

constexpr std::size_t headerBytes = 44;
constexpr std::size_t riffHeaderBytes = headerBytes - 8;  // what the RIFF size counts
constexpr std::size_t bytesPerSample = 2;
constexpr uint64_t ditherSeed = 0x5EED;
constexpr uint64_t maxField = std::numeric_limits<uint32_t>::max();

/// Fills memory front to back, least significant byte first.
class ByteFiller {
 public:
  explicit ByteFiller(char* at) : at_(at) {}

  void tag(const char (&text)[5]) {
    std::memcpy(at_, text, 4);
    at_ += 4;
  }
  void u32(uint64_t value) {
    u16(value & 0xFFFF);
    u16(value >> 16);
  }
  void u16(uint64_t value) {
    *at_++ = static_cast<char>(value & 0xFF);
    *at_++ = static_cast<char>(value >> 8 & 0xFF);
  }

 private:
  char* at_;
};

/// Triangular noise of one step to either side, so that quiet tails do not turn into distortion.
class DitheredQuantiser {
 public:
  int16_t operator()(float sample) {
    const double first = rng_.unit();
    const double second = rng_.unit();
    const float dithered = sample + static_cast<float>(first - second) * 0x1p-15f;
    if (!(dithered < 1.0f)) return 32767;  // also for NaN
    return static_cast<int16_t>(std::max(dithered, -1.0f) * 32767.0f);
  }

 private:
  SplitMix64 rng_{ditherSeed};
};

void require(bool promise) {
  if (!promise) std::abort();
}

void writeHeader(ByteFiller& out, uint64_t channels, uint64_t rate, uint64_t dataBytes) {
  const uint64_t blockAlign = channels * bytesPerSample;
  require(rate <= maxField && rate * blockAlign <= maxField);
  out.tag("RIFF");
  out.u32(riffHeaderBytes + dataBytes);
  out.tag("WAVE");
  out.tag("fmt ");
  out.u32(16);
  out.u16(1);  // integer PCM
  out.u16(channels);
  out.u32(rate);
  out.u32(rate * blockAlign);
  out.u16(blockAlign);
  out.u16(8 * bytesPerSample);
  out.tag("data");
  out.u32(dataBytes);
}

}  // namespace

std::string encodeWAV(Channel left, std::optional<Channel> right, int64_t sampleRate) {
  require(sampleRate >= 0 && (!right || right->size() >= left.size()));
  const std::size_t channels = right ? 2 : 1;
  require(left.size() <= (maxField - riffHeaderBytes) / (channels * bytesPerSample));
  const std::size_t dataBytes = left.size() * channels * bytesPerSample;
  std::string bytes(headerBytes + dataBytes, '\0');
  ByteFiller out(bytes.data());
  writeHeader(out, channels, static_cast<uint64_t>(sampleRate), dataBytes);
  DitheredQuantiser quantised;
  for (std::size_t frame = 0; frame < left.size(); ++frame) {
    out.u16(static_cast<uint16_t>(quantised(left[frame])));
    if (right) out.u16(static_cast<uint16_t>(quantised((*right)[frame])));
  }
  return bytes;
}

void writeWAV(Channel left, std::optional<Channel> right, int64_t sampleRate,
              const std::filesystem::path& file) {
  writeFileAtomically(file, encodeWAV(left, right, sampleRate));
}

}  // namespace tobrin
