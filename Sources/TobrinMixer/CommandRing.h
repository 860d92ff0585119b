/// The queue between the one producer of commands and the render thread. A function for the
/// producer says so. Thread: render.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "TobrinMixer.h"

namespace tobrin {

static_assert(std::is_trivially_copyable_v<TBCommand>);
static_assert(std::atomic<uint32_t>::is_always_lock_free);
static_assert(std::atomic<uint64_t>::is_always_lock_free);

/// Both counts only grow and wrap at 2^32; a slot is its count modulo the capacity. Each count has
/// one writer and its own cache line, so neither side slows the other by writing.
class CommandRing final {
 public:
  /// `firstCount` is where both counts begin.
  explicit CommandRing(uint32_t firstCount = 0) noexcept : write_(firstCount), read_(firstCount) {}

  /// Copies `command` into the ring; false when every slot is taken. Thread: producer.
  [[nodiscard]] bool push(const TBCommand& command) noexcept {
    const uint32_t write = write_.load(std::memory_order_relaxed);
    // Pairs with the release store in drain(): slots the consumer gave back may be overwritten.
    if (write - read_.load(std::memory_order_acquire) >= TB_RING_CAPACITY) return false;
    slots_[write % TB_RING_CAPACITY] = command;
    // Publishes the slot; pairs with the acquire load in drain().
    write_.store(write + 1, std::memory_order_release);
    return true;
  }

  /// Has the consumer drop the commands that wait now. Thread: producer.
  void forget() noexcept {
    const uint64_t order = forgotten_.load(std::memory_order_relaxed) + (uint64_t{1} << 32);
    const uint64_t end = write_.load(std::memory_order_relaxed);
    // Publishes the slots below `end` too, for a consumer that has not seen their count yet; pairs
    // with the acquire load in drain().
    forgotten_.store((order & ~uint64_t{UINT32_MAX}) | end, std::memory_order_release);
  }

  /// Calls `onForget` if `forget` was called since the last time, then hands every waiting command
  /// to `apply`, oldest first.
  template <typename Apply, typename OnForget>
  void drain(Apply&& apply, OnForget&& onForget) noexcept {
    uint32_t read = read_.load(std::memory_order_relaxed);
    // Pairs with the release store in push(): the slots below this count are filled. Read before
    // the order to forget: where a command is seen, so is an order given before it.
    uint32_t end = write_.load(std::memory_order_acquire);
    const uint64_t order = forgotten_.load(std::memory_order_acquire);
    if (order != obeyed_) {
      obeyed_ = order;
      onForget();
      read = static_cast<uint32_t>(order);
      if (end - read > TB_RING_CAPACITY) end = read;  // the order is the newer of the two
      read_.store(read, std::memory_order_release);
    }
    if (read == end) return;
    for (; read != end; ++read)
      apply(slots_[read % TB_RING_CAPACITY]);
    // Gives the slots back; pairs with the acquire load in push().
    read_.store(end, std::memory_order_release);
  }

 private:
  static_assert((TB_RING_CAPACITY & (TB_RING_CAPACITY - 1)) == 0,
                "slots are taken modulo a power of two");
  static constexpr size_t cacheLine = 64;

  alignas(cacheLine) std::atomic<uint32_t> write_;
  // Written by the producer: upper half, how many orders to forget it gave; lower half, the count
  // below which commands are dropped.
  std::atomic<uint64_t> forgotten_ = 0;
  alignas(cacheLine) std::atomic<uint32_t> read_;
  uint64_t obeyed_ = 0;  // the last order carried out; consumer only
  alignas(cacheLine) std::array<TBCommand, TB_RING_CAPACITY> slots_{};
};

}  // namespace tobrin
