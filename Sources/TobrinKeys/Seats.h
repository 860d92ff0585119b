/// Where a user's session is, by the login manager, and which console is in front, by the kernel.
/// Thread: main.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>

#include "Base/FileDescriptor.h"

struct sd_bus;

namespace tobrin {

struct Place {
  enum class Kind : uint8_t { unknown, background, locked, front };

  Kind kind = Kind::unknown;
  std::string seat{};    ///< where locked or in front
  unsigned console = 0;  ///< of the session; 0 where its seat has no consoles
};

class Seats final {
 public:
  /// `bus` is borrowed.
  explicit Seats(sd_bus* bus);

  /// Where the user sits now. In the background where the session in front is another user's or a
  /// login prompt's, and for users from elsewhere; unknown where the login manager does not answer.
  [[nodiscard]] Place placeOf(uid_t user) const;

  /// Whether the kernel still shows this console. The login manager's notice comes a little after
  /// the switch; this has no such gap.
  [[nodiscard]] bool isInFront(const Place& place) const;

 private:
  sd_bus* const bus_;
  const FileDescriptor console_;  // none where the system has no consoles
};

}  // namespace tobrin
