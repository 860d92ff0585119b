/// Brings an X server's time stamps (32 bits of milliseconds) onto `MachTime`'s clock, where the
/// server counts on the same one: a server on this machine does, one at the far end of a network
/// does not. Thread: key.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>

namespace tobrin {

class XClock {
 public:
  /// Asks the server for its time. Must come before any event is selected on the connection.
  static XClock compare(xcb_connection_t* connection);

  explicit XClock(bool sharesOurs) : sharesOurs_(sharesOurs) {}

  /// `serverTime` in ticks; nothing where the clocks differ or the stamp lies in the future of
  /// `now`.
  [[nodiscard]] std::optional<uint64_t> ticks(uint32_t serverTime, uint64_t now) const;

 private:
  bool sharesOurs_;
};

}  // namespace tobrin
