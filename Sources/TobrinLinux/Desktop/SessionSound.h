/// The sound system that this desktop has: where sounds are played and recorded, and who else
/// records. Thread: any.
#pragma once

#include <memory>

#include "Engine/AudioDevice.h"
#include "Mic/MicSource.h"
#include "Recording/SoundCapture.h"

namespace tobrin {

class PipeWireLoop;

/// A loop to share among everything that talks to the sound server, or null where the PipeWire
/// library cannot be used.
std::shared_ptr<PipeWireLoop> makePipeWireLoop();

/// PipeWire, and ALSA while no PipeWire server has answered yet or the one that does has no output
/// device. `loop` may be null.
std::unique_ptr<AudioDevice> makeAudioDevice(std::shared_ptr<PipeWireLoop> loop);

/// PipeWire, and PulseAudio while PipeWire knows no microphone. `loop` may be null.
std::unique_ptr<MicSource> makeMicSource(std::shared_ptr<PipeWireLoop> loop);

/// PipeWire. Throws std::runtime_error where the PipeWire library cannot be used.
std::unique_ptr<SoundCapture> makeSoundCapture();

}  // namespace tobrin
