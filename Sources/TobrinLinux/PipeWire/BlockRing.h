/// Carries recorded sound from the sound server's real-time thread to the thread that keeps it. One
/// thread pushes, one takes. Depends on nothing, as tools that measure the program use it too.
/// Thread: any.
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tobrin {

/// A run of frames of stereo at 48 kHz, interleaved, and the time of the first of them.
struct TimedBlock {
  static constexpr size_t capacity = 1024;  // frames
  static constexpr size_t channelCount = 2;
  static constexpr double sampleRate = 48000;
  int64_t startNs = 0;
  size_t frames = 0;
  std::array<float, capacity * channelCount> samples{};
};

/// One producer, one consumer; never waits, counts what it could not take.
class BlockRing final {
 public:
  BlockRing() : blocks_(512) {}

  /// Any length; split into blocks. Called by the thread that pushes.
  void push(int64_t startNs, std::span<const float> interleaved) noexcept {
    while (!interleaved.empty()) {
      const size_t samples =
          std::min(interleaved.size(), TimedBlock::capacity * TimedBlock::channelCount);
      const size_t frames = samples / TimedBlock::channelCount;
      pushBlock(startNs, interleaved.first(samples));
      startNs += static_cast<int64_t>(static_cast<double>(frames) * 1e9 / TimedBlock::sampleRate);
      interleaved = interleaved.subspan(samples);
    }
  }

  /// Null when empty; the block stays valid until pop(). Called by the thread that takes.
  [[nodiscard]] const TimedBlock* front() const noexcept {
    const size_t read = read_.load(std::memory_order_relaxed);
    // Pairs with the store in pushBlock(), which publishes the block's contents.
    return read == written_.load(std::memory_order_acquire) ? nullptr
                                                            : &blocks_[read % blocks_.size()];
  }
  void pop() noexcept {
    // Pairs with the load in pushBlock(): the slot may be filled again.
    read_.store(read_.load(std::memory_order_relaxed) + 1, std::memory_order_release);
  }

  [[nodiscard]] uint64_t lostFrames() const noexcept {
    return lost_.load(std::memory_order_relaxed);
  }

 private:
  void pushBlock(int64_t startNs, std::span<const float> samples) noexcept {
    const size_t written = written_.load(std::memory_order_relaxed);
    if (written - read_.load(std::memory_order_acquire) == blocks_.size()) {
      lost_.fetch_add(samples.size() / TimedBlock::channelCount, std::memory_order_relaxed);
      return;
    }
    TimedBlock& block = blocks_[written % blocks_.size()];
    block.startNs = startNs;
    block.frames = samples.size() / TimedBlock::channelCount;
    std::copy(samples.begin(), samples.end(), block.samples.begin());
    written_.store(written + 1, std::memory_order_release);
  }

  std::vector<TimedBlock> blocks_;
  std::atomic<size_t> written_{0};  // producer
  std::atomic<size_t> read_{0};     // consumer
  std::atomic<uint64_t> lost_{0};
};

}  // namespace tobrin
