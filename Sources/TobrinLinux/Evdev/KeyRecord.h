/// What the key broker tells a program about the keyboards: packets of these records, through a
/// one-way socket. Both ends are of one machine and one build. Thread: any.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace tobrin {

struct KeyRecord {
  enum class Kind : uint8_t {
    release,
    press,
    gone,            ///< the keyboard was pulled out: nothing is held on it
    delivering,      ///< from now on keys are delivered
    inBackground,    ///< no keys until `delivering`: another session is in front, or none
    locked,          ///< no keys until `delivering`: the session is locked
    takenBack,       ///< the user took the access back; the socket ends
    alsoWhenLocked,  ///< comes first where keys are delivered while the session is locked, too
    appeared         ///< before a keyboard's first key: `code` is the number of its device
  };

  uint64_t timeNs = 0;  ///< CLOCK_MONOTONIC, of a press or release
  uint32_t keyboard = 0;
  uint16_t code = 0;  ///< the kernel's, of a press or release; see `appeared`
  Kind kind = Kind::release;
  uint8_t unused = 0;
};
static_assert(sizeof(KeyRecord) == 16 && std::is_trivially_copyable_v<KeyRecord>);

/// The most records in one packet.
constexpr std::size_t keyRecordsAtOnce = 64;

/// Where the message bus has the broker.
constexpr const char* keyBrokerName = "app.tobrin.Keys1";
constexpr const char* keyBrokerPath = "/app/tobrin/Keys1";
constexpr const char* keyBrokerNotAllowed = "app.tobrin.Keys1.Error.NotAllowed";
constexpr const char* keyBrokerNotTobrin = "app.tobrin.Keys1.Error.NotTobrin";

}  // namespace tobrin
