/// The microphone watch's view of the sound system that this desktop has.
#pragma once

#include <memory>

#include "Mic/MicSource.h"

namespace tobrin {

class PipeWireLoop;

/// Where `loop` is null it is never known who records.
std::unique_ptr<MicSource> makeMicSource(std::shared_ptr<PipeWireLoop> loop);

}  // namespace tobrin
