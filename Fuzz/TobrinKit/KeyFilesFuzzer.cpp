// Any lines as the names of a source's files: cleaned they stay inside, and those that are named by
// keys make a pack.
#include <sstream>

#include "ForeignFiles.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using namespace tobrin;
  std::istringstream lines{std::string(fuzz::textOf(data, size))};
  std::vector<SourceFiles::File> named;
  for (std::string line; std::getline(lines, line) && named.size() < 100;) {
    const auto clean = SourceFiles::cleanName(line);
    if (!clean) continue;
    fuzz::require(!clean->starts_with('/') && *clean != ".." && !clean->starts_with("../"));
    fuzz::require(("/" + *clean + "/").find("/../") == std::string::npos);
    named.push_back({*clean, {}, 1});
  }
  const SourceFiles files(std::move(named));
  ImportNotes notes;
  const auto pack = readKeyFiles({files, fuzz::anyCode, notes});
  fuzz::require(!pack || !pack->keys.empty());
  return 0;
}
