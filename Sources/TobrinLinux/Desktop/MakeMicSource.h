/// The microphone watch's view of the sound system that this desktop has.
#pragma once

#include <memory>

#include "Mic/MicSource.h"

namespace tobrin {

class PipeWireLoop;

/// PipeWire, and PulseAudio while PipeWire knows no microphone. `loop` may be null.
std::unique_ptr<MicSource> makeMicSource(std::shared_ptr<PipeWireLoop> loop);

}  // namespace tobrin
