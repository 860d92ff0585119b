// Any bytes as an archive: refused, or unpacked within the limits.
#include <fstream>

#include "FuzzInput.h"
#include "Importing/ImportError.h"
#include "Importing/TemporaryFolder.h"
#include "Importing/Unpacking.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using namespace tobrin;
  static const TemporaryFolder source;
  const TemporaryFolder folder;
  const auto file = source.path() / "archive";
  std::ofstream(file, std::ios::binary) << fuzz::textOf(data, size);
  ImportNotes notes;
  try {
    uint64_t bytes = 0;
    const SourceFiles files = unpack(file, folder.path(), notes);
    for (const auto& each : files.all()) {
      fuzz::require(each.path.parent_path() == folder.path());
      bytes += each.bytes;
    }
    fuzz::require(bytes <= SourceFiles::mostBytes);
  } catch (const ImportError&) {
  }
  return 0;
}
