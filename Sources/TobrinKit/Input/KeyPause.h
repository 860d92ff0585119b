/// Why no keys come for now although they may be heard. Thread: any.
#pragma once

#include <cstdint>

namespace tobrin {

enum class KeyPause : uint8_t {
  none,
  inBackground,  ///< another session is in front of the keyboards, or a login prompt
  locked         ///< the session is locked
};

}  // namespace tobrin
