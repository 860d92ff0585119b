// Any bytes as a "config.json": refused with a text, or a pack whose sounds can be cut.
#include "Base/ReadJson.h"
#include "ForeignFiles.h"
#include "Importing/ImportError.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using namespace tobrin;
  static const SourceFiles files = fuzz::filesNamed({"a/s.wav", "a/0.wav", "a/1.wav"});
  ImportNotes notes;
  try {
    const auto pack =
        readConfig({files, fuzz::anyCode, notes}, "a/config.json", fuzz::textOf(data, size));
    if (pack) fuzz::cutAll(*pack);
  } catch (const ImportError&) {
  } catch (const JsonError&) {
  }
  return 0;
}
