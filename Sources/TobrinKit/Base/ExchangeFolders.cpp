#include "Base/ExchangeFolders.h"

#include <fcntl.h>

#include <cstdio>

namespace tobrin {

bool exchangeFolders(const std::filesystem::path& one, const std::filesystem::path& other) {
  return ::renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE) == 0;
}

}  // namespace tobrin
