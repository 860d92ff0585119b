/// Why no keys arrive now although the program may hear them. Thread: any.
#pragma once

#include <cstdint>

namespace tobrin {

enum class KeyPause : uint8_t {
  none,
  inBackground,  ///< another session, or a login prompt, has the keyboards
  locked         ///< the session is locked
};

}  // namespace tobrin
