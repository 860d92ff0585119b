/// The output devices in a sound server's graph. Thread: any.
#pragma once

#include <cstdint>
#include <optional>

#include "Engine/SoundOutputs.h"
#include "PipeWire/CaptureGraph.h"

namespace tobrin {

/// Every device that can be played on, and the one that the stream with this node id is linked to.
/// A device's id is its node's name: ids and serial numbers are others each time.
[[nodiscard]] SoundOutputs playbackOutputs(const CaptureGraph& graph,
                                           std::optional<uint32_t> streamId);

}  // namespace tobrin
