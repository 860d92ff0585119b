// Any bytes as an audio file: refused, or decoded to finite samples within the limit. The first
// byte chooses the rate to convert to.
#include <sys/mman.h>
#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "Base/PackError.h"
#include "Packs/SampleBuffer.h"

namespace {

constexpr uint64_t maxBytes = uint64_t{4} << 20;

/// A file in memory that has a path; its content changes from run to run.
int fileInMemory() {
  static const int descriptor = memfd_create("sound", 0);
  return descriptor;
}

void check(const float* samples, std::size_t frames) {
  for (std::size_t i = 0; i < frames; ++i)
    if (!std::isfinite(samples[i])) std::abort();
}

}  // namespace

// What libsndfile leaves behind of a broken Ogg stream that it refuses: 6 kB each time, not ours.
extern "C" const char* __lsan_default_suppressions() {  // NOLINT: the sanitizer's name
  return "leak:vorbis_info_init\n";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  const int file = fileInMemory();
  if (ftruncate(file, 0) != 0 || pwrite(file, data + 1, size - 1, 0) < 0) return 0;
  try {
    const std::string path = "/proc/self/fd/" + std::to_string(file);
    const double rate = data[0] % 2 == 0 ? 48000 : 44100;
    const auto sound = tobrin::SampleBuffer::load(path, rate, maxBytes);
    if (sound->frames() > maxBytes / 8) std::abort();
    check(sound->left(), sound->frames());
    check(sound->right(), sound->frames());
  } catch (const tobrin::PackError&) {
    // Refused.
  }
  return 0;
}
