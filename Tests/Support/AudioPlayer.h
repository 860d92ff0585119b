/// What a sound device calls in tests: plays a pulse on request, and counts what happens to it.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>

#include "Engine/AudioDevice.h"

namespace tobrin::testing {

struct AudioPlayer {
  /// Constant over the pulse, in both channels.
  static constexpr float leftLevel = 0.5F;
  static constexpr float rightLevel = -0.25F;

  std::atomic<int> pulseFrames = 0;  // left to play
  std::atomic<int> blocks = 0;
  std::atomic<uint32_t> largestBlock = 0;
  std::atomic<int> changes = 0;
  std::atomic<int> inRender = 0;
  std::atomic<bool> overlapped = false;

  AudioCallbacks callbacks() {
    return {.render = render,
            .context = this,
            .changed = [this] { changes.fetch_add(1); },
            .outputsChanged =
                [this](const SoundOutputs& now) {
                  const std::lock_guard lock(mutex);
                  outputs = now;
                }};
  }

  /// The name of the output that plays; empty where it is not known.
  [[nodiscard]] std::string used() const {
    const std::lock_guard lock(mutex);
    for (const SoundOutput& output : outputs.present)
      if (output.id == outputs.used) return output.name;
    return outputs.used;
  }

  mutable std::mutex mutex;
  SoundOutputs outputs;  // guarded by mutex

  static void render(void* context, float* left, float* right, uint32_t frames) noexcept {
    auto& player = *static_cast<AudioPlayer*>(context);
    if (player.inRender.fetch_add(1) != 0) player.overlapped = true;
    for (uint32_t i = 0; i < frames; ++i) {
      const float level = player.pulseFrames > 0 ? 1.0F : 0.0F;
      if (player.pulseFrames > 0) --player.pulseFrames;
      left[i] = level * leftLevel;
      if (right != nullptr) right[i] = level * rightLevel;
    }
    player.blocks.fetch_add(1);
    player.largestBlock = std::max(player.largestBlock.load(), frames);
    player.inRender.fetch_sub(1);
  }
};

}  // namespace tobrin::testing
