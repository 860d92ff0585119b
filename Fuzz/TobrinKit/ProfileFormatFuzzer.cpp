// Any bytes as a "profile.yaml": refused with a text, or a pack.
#include "ForeignFiles.h"
#include "Importing/ImportError.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using namespace tobrin;
  static const SourceFiles files = fuzz::filesNamed({"s.wav", "0.wav", "1.wav"});
  ImportNotes notes;
  try {
    (void)readProfile({files, fuzz::anyCode, notes}, "profile.yaml", fuzz::textOf(data, size));
  } catch (const ImportError&) {
  }
  return 0;
}
