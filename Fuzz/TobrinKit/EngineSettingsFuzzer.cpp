// Any bytes as settings: refused with a text, or decoded to what encodes and decodes alike.
#include <cstdint>
#include <cstdlib>
#include <stdexcept>

#include "Engine/EngineSettings.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using tobrin::EngineSettings;
  try {
    const auto settings = EngineSettings::fromJson({reinterpret_cast<const char*>(data), size});
    if (!(EngineSettings::fromJson(settings.toJson()) == settings)) std::abort();
  } catch (const std::runtime_error&) {
    // Refused.
  }
  return 0;
}
