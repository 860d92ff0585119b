#include "Desktop/SessionSound.h"

#include <stdexcept>

#include "Alsa/AlsaConfiguration.h"
#include "Alsa/AlsaOutput.h"
#include "Base/Log.h"
#include "Engine/FallbackAudioDevice.h"
#include "Mic/FallbackMicSource.h"
#include "PipeWire/PipeWireCapture.h"
#include "PipeWire/PipeWireLoop.h"
#include "PipeWire/PipeWireMicSource.h"
#include "PipeWire/PipeWireOutput.h"
#include "Pulse/PulseMicSource.h"
#include "Threads/ThreadPreparation.h"

namespace tobrin {

namespace {

constexpr auto alsaDevice = "default";

}  // namespace

std::shared_ptr<PipeWireLoop> makePipeWireLoop() {
  try {
    return std::make_shared<PipeWireLoop>();
  } catch (const std::runtime_error& error) {
    logLine(error.what());
    return nullptr;
  }
}

std::unique_ptr<AudioDevice> makeAudioDevice(std::shared_ptr<PipeWireLoop> loop) {
  const auto makeAlsa = []() -> std::unique_ptr<AudioDevice> {
    return std::make_unique<AlsaOutput>(alsaDevice, requestRealtimeScheduling);
  };
  if (loop == nullptr) return makeAlsa();
  auto server = std::make_unique<PipeWireOutput>(std::move(loop));
  // A server that has played and is gone restarts, and must find the card free. One that expects no
  // device, such as one for screen sharing alone, leaves the card to ALSA, unless ALSA's device
  // leads back to that server.
  const PipeWireOutput& output = *server;
  return std::make_unique<FallbackAudioDevice>(std::move(server), makeAlsa, [&output] {
    return !output.expectsDevice() && !alsaDeviceLeadsTo("pipewire", alsaDevice);
  });
}

std::unique_ptr<MicSource> makeMicSource(std::shared_ptr<PipeWireLoop> loop) {
  auto pulse = std::make_unique<PulseMicSource>();
  if (loop == nullptr) return pulse;
  return std::make_unique<FallbackMicSource>(std::make_unique<PipeWireMicSource>(std::move(loop)),
                                             std::move(pulse));
}

std::unique_ptr<SoundCapture> makeSoundCapture() {
  return std::make_unique<PipeWireCapture>(std::make_shared<PipeWireLoop>());
}

}  // namespace tobrin
