#include "Importing/TemporaryFolder.h"

namespace tobrin {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() : work_(fs::temp_directory_path(), ".tobrin-work-") {
  fs::permissions(path(), fs::perms::owner_all);
}

}  // namespace tobrin
