// Any bytes as a manifest: refused with a text, or decoded to what encodes and decodes alike.
#include <cstdint>
#include <cstdlib>
#include <stdexcept>

#include "Packs/PackManifest.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using tobrin::PackManifest;
  try {
    const auto manifest = PackManifest::fromJson({reinterpret_cast<const char*>(data), size});
    if (PackManifest::fromJson(manifest.toJson()) != manifest) std::abort();
  } catch (const std::runtime_error&) {
    // Refused.
  }
  return 0;
}
