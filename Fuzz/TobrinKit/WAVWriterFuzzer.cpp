// Samples of any bit pattern through the WAV writer and the loudness meter.
#include <algorithm>
#include <bit>
#include <cmath>
#include <vector>

#include "Building/Loudness.h"
#include "FuzzInput.h"
#include "Packs/WAVWriter.h"

using namespace tobrin;

namespace {

int sampleAt(const std::string& bytes, std::size_t index) {
  const auto low = static_cast<uint8_t>(bytes[44 + 2 * index]);
  const auto high = static_cast<uint8_t>(bytes[45 + 2 * index]);
  return static_cast<int16_t>(high << 8 | low);
}

/// Two steps: one of dither, one of truncation.
void requireClose(float sample, int written) {
  const double wanted =
      std::isnan(sample) ? 1.0 : std::clamp(static_cast<double>(sample), -1.0, 1.0);
  fuzz::require(written >= -32767 && std::fabs(wanted * 32767 - written) <= 2);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const bool measures = input.take<uint8_t>() % 16 == 0;  // slow beside the rest
  std::vector<float> left, right;
  while (!input.empty()) {
    left.push_back(std::bit_cast<float>(input.take<uint32_t>()));
    right.push_back(std::bit_cast<float>(input.take<uint32_t>()));
  }
  const std::string bytes = encodeWAV(left, right, 48'000);
  fuzz::require(bytes.size() == 44 + 4 * left.size());
  for (std::size_t frame = 0; frame < left.size(); ++frame) {
    requireClose(left[frame], sampleAt(bytes, 2 * frame));
    requireClose(right[frame], sampleAt(bytes, 2 * frame + 1));
  }
  if (!measures || left.empty()) return 0;
  std::vector<float> programme(24'000);  // two blocks
  for (std::size_t frame = 0; frame < programme.size(); ++frame)
    programme[frame] = left[frame % left.size()];
  (void)integratedLoudness(programme, {}, 48'000);
  return 0;
}
