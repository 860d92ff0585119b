/// What the sound system says of microphones and of who records, as the microphone watch needs it.
/// State only: no audio is ever read. Thread: mic.
#pragma once

#include <functional>

#include "Mic/MicActivity.h"

namespace tobrin {

class MicSource {
 public:
  virtual ~MicSource() = default;

  /// Begins to follow the sound system and calls `changed` (on a thread of the source)
  /// whenever what `read` tells may differ. A server that goes away is waited for.
  virtual void start(std::function<void()> changed) = 0;

  /// When it returns, the last `changed` has ended and nothing is followed any more.
  virtual void stop() = 0;

  /// The present state; nothing in use, and unknown who records, where no server answers. While
  /// stopped it asks the server once. One thread at a time; may wait for the server. Thread: any.
  [[nodiscard]] virtual MicActivity read() = 0;
};

}  // namespace tobrin
