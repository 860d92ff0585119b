#include "Importing/TemporaryFolder.h"

#include <random>
#include <string>
#include <system_error>

namespace tobrin {
namespace {

namespace fs = std::filesystem;

}  // namespace

TemporaryFolder::TemporaryFolder() {
  const fs::path parent = fs::temp_directory_path();
  std::random_device chance;
  do {
    path_ = parent / ("tobrin-" + std::to_string(chance()));
    // False where the folder exists already, no matter whose it is.
  } while (!fs::create_directory(path_));
  fs::permissions(path_, fs::perms::owner_all);
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

}  // namespace tobrin
