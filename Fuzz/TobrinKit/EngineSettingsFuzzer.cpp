// Any bytes as settings: refused with a text, or decoded to a value that encodes and decodes
// unchanged.
#include "Engine/EngineSettings.h"

#include <functional>
#include <stdexcept>

#include "FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using namespace tobrin;
  fuzz::requireRoundTrip<std::runtime_error>(fuzz::textOf(data, size), EngineSettings::fromJson,
                                             std::mem_fn(&EngineSettings::toJson));
  return 0;
}
