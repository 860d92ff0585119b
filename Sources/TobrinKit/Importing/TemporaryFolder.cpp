#include "Importing/TemporaryFolder.h"

#include <string>
#include <system_error>

#include "Base/Environment.h"

namespace tobrin {

namespace fs = std::filesystem;

namespace {

WorkFolder privateFolder() {
  const fs::path parent = temporaryFiles();
  try {
    return {parent, ".tobrin-work-"};
  } catch (const fs::filesystem_error& error) {
    throw std::system_error(error.code(), "no temporary folder in " + parent.string());
  }
}

}  // namespace

fs::path temporaryFiles() {
  const std::string named = processVariable("TMPDIR");
  return named.empty() ? "/tmp" : named;
}

TemporaryFolder::TemporaryFolder() : work_(privateFolder()) {
  fs::permissions(path(), fs::perms::owner_all);
}

}  // namespace tobrin
