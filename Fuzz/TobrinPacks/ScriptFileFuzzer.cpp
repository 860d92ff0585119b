// Any bytes as a script of keys: refused with a text, or keys within their ranges.
#include "ScriptFile.h"

#include <cstdint>
#include <cstdlib>
#include <stdexcept>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  try {
    const auto script = tobrin::parseScript({reinterpret_cast<const char*>(data), size});
    for (const tobrin::ScriptedKey& key : script) {
      const bool inRange = key.time >= 0 && key.time <= tobrin::longestScript &&
                           key.position >= 0 && key.position <= 3;
      if (!inRange) std::abort();
    }
  } catch (const std::runtime_error&) {
    // Refused.
  }
  return 0;
}
