#include "Desktop/MakeMicSource.h"

#include "Desktop/FallbackMicSource.h"
#include "PipeWire/PipeWireLoop.h"
#include "PipeWire/PipeWireMicSource.h"
#include "Pulse/PulseMicSource.h"

namespace tobrin {

std::unique_ptr<MicSource> makeMicSource(std::shared_ptr<PipeWireLoop> loop) {
  auto pulse = std::make_unique<PulseMicSource>();
  if (loop == nullptr) return pulse;
  return std::make_unique<FallbackMicSource>(std::make_unique<PipeWireMicSource>(std::move(loop)),
                                             std::move(pulse));
}

}  // namespace tobrin
