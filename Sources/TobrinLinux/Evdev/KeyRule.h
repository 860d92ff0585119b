/// The device manager's rule by which every program of the user at the seat may read its keyboards:
/// what Tobrin asked for before there was a key broker. Thread: any.
#pragma once

#include <unistd.h>

namespace tobrin {

inline bool isKeyRuleInstalled() {
  return access("/etc/udev/rules.d/70-tobrin-keys.rules", F_OK) == 0;
}

}  // namespace tobrin
