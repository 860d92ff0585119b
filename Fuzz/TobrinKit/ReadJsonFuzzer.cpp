// Any bytes as JSON: refused with a few words, or a document that is written and read unchanged.
#include "Base/ReadJson.h"

#include "FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using namespace tobrin;
  try {
    const nlohmann::json document = readJson(fuzz::textOf(data, size));
    fuzz::require(readJson(document.dump(2)) == document);
  } catch (const JsonError& error) {
    fuzz::require(std::string_view(error.what()).size() < 300);
  }
  return 0;
}
