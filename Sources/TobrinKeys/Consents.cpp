#include "Consents.h"

#include <unistd.h>

#include <cerrno>

#include "Base/FileDescriptor.h"

namespace tobrin {

bool Consents::has(uid_t user) const {
  return untilTheEnd_.contains(user) || access(file(user).c_str(), F_OK) == 0;
}

bool Consents::give(uid_t user, bool remember) {
  constexpr mode_t ownerOnly = 0600;
  if (remember)
    return static_cast<bool>(
        FileDescriptor::open(file(user).c_str(), O_WRONLY | O_CREAT, ownerOnly));
  untilTheEnd_.insert(user);
  return true;
}

bool Consents::takeBack(uid_t user) {
  untilTheEnd_.erase(user);
  return unlink(file(user).c_str()) == 0 || errno == ENOENT;
}

}  // namespace tobrin
