/// Plays a script of key presses through a mixer into memory, without a device: this is how packs
/// are auditioned and their loudness is measured. The same input gives the same samples.
///
/// Simpler than live playing: strengths come from a fixed table by tier, nothing is refined, and
/// releases vary as much as presses do. Thread: any.
#pragma once

#include <functional>
#include <vector>

#include "Engine/EngineSettings.h"
#include "Engine/TypingScript.h"
#include "Packs/LoadedPack.h"

namespace tobrin {

/// Two channels of equal length.
struct RenderedSound {
  std::vector<float> left;
  std::vector<float> right;
};

/// Receives from time to time how much is done, 0 to 1.
using RenderProgress = std::function<void(double)>;

/// Receives memory that is about to be filled whole, before anything touches it.
using MemoryHint = void (*)(void* memory, std::size_t bytes);

/// Renders a script in any order up to `tail` seconds after its last key, at `sampleRate` frames a
/// second. Keys start with the 64-frame block that their time falls in. Of the settings volume,
/// blending, releases and stereo width count. Throws `std::bad_alloc` or `std::length_error` where
/// memory does not suffice.
RenderedSound renderOffline(const LoadedPack& pack, std::vector<ScriptedKey> script,
                            const EngineSettings& settings, double tail, double sampleRate,
                            const RenderProgress& progress = {}, MemoryHint hint = nullptr);

}  // namespace tobrin
