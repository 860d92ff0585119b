#include "Desktop/MakeMicSource.h"

#include "PipeWire/PipeWireLoop.h"
#include "PipeWire/PipeWireMicSource.h"

namespace tobrin {

namespace {

class BlindMicSource final : public MicSource {
 public:
  void start(std::function<void()> /*changed*/) override {}
  void stop() override {}
  MicActivity read() override { return {}; }
};

}  // namespace

std::unique_ptr<MicSource> makeMicSource(std::shared_ptr<PipeWireLoop> loop) {
  if (loop == nullptr) return std::make_unique<BlindMicSource>();
  return std::make_unique<PipeWireMicSource>(std::move(loop));
}

}  // namespace tobrin
