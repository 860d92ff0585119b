/// Which users an administrator has allowed to hear their keyboards: remembered in an empty file
/// named by the user's number, or only until the broker ends. Thread: main.
#pragma once

#include <sys/types.h>

#include <set>
#include <string>
#include <utility>

namespace tobrin {

class Consents final {
 public:
  explicit Consents(std::string folder) : folder_(std::move(folder)) {}

  [[nodiscard]] bool has(uid_t user) const;
  /// False where it is to be remembered and cannot be.
  [[nodiscard]] bool give(uid_t user, bool remember);
  /// False where it stays remembered.
  [[nodiscard]] bool takeBack(uid_t user);

 private:
  [[nodiscard]] std::string file(uid_t user) const { return folder_ + '/' + std::to_string(user); }

  const std::string folder_;
  std::set<uid_t> untilTheEnd_;
};

}  // namespace tobrin
