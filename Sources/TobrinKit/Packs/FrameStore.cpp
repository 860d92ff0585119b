#include "Packs/FrameStore.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace tobrin {
namespace {

constexpr std::size_t slackFrames = 1024;  // unused room that is not worth a copy

void resize(std::unique_ptr<float[]>& block, std::size_t used, std::size_t capacity) {
  auto larger = std::make_unique_for_overwrite<float[]>(std::max<std::size_t>(capacity, 1));
  std::copy_n(block.get(), used, larger.get());
  block = std::move(larger);
}

}  // namespace

FrameStore::~FrameStore() {
  allowance_.giveBack(taken_);
}

void FrameStore::expect(uint64_t frames, uint64_t credible) {
  allowance_.take(frames);
  taken_ += frames;
  setCapacity(static_cast<std::size_t>(std::min(frames, credible)));
}

void FrameStore::append(const float* left, const float* right, std::size_t frames) {
  assert(left != nullptr && stereo_ == (right != nullptr));
  const std::size_t wanted = blocks_.frames + frames;
  if (wanted > taken_) {
    allowance_.take(wanted - taken_);
    taken_ = wanted;
  }
  if (wanted > capacity_) setCapacity(std::max(wanted, 2 * capacity_));
  std::transform(left, left + frames, blocks_.left.get() + blocks_.frames, soundOrZero);
  if (stereo_)
    std::transform(right, right + frames, blocks_.right.get() + blocks_.frames, soundOrZero);
  blocks_.frames = wanted;
}

SampleBuffer::Blocks FrameStore::finish() {
  if (capacity_ > blocks_.frames + slackFrames || !blocks_.left) setCapacity(blocks_.frames);
  assert(taken_ >= blocks_.frames);
  allowance_.giveBack(taken_ - blocks_.frames);
  taken_ = 0;
  return std::move(blocks_);
}

void FrameStore::setCapacity(std::size_t capacity) {
  resize(blocks_.left, blocks_.frames, capacity);
  if (stereo_) resize(blocks_.right, blocks_.frames, capacity);
  capacity_ = capacity;
}

}  // namespace tobrin
