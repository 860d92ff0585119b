// Forms lines out of sources. Included once for every instruction set.
#if defined(TOBRIN_LINE_SUM_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef TOBRIN_LINE_SUM_INL_H
#undef TOBRIN_LINE_SUM_INL_H
#else
#define TOBRIN_LINE_SUM_INL_H
#endif

#include <algorithm>
#include <array>

#include "MixKernels.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace tobrin::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

/// A source from the first frame of interest on.
struct WeightedSamples {
  const float* samples;
  size_t frames;  ///< from there to the end
  float weight;
};

struct WeightedSet {
  std::array<WeightedSamples, 2 * TB_LAYERS> sources;
  size_t count = 0;
};

// Adds up `count` sources, in order, over `vectors` whole vectors.
template <size_t count>
HWY_NOINLINE void sumVectors(const WeightedSamples* sources, size_t vectors, float* line) {
  const hn::ScalableTag<float> d;
  const size_t step = hn::Lanes(d);
  const auto weight = [&](size_t n) { return hn::Set(d, sources[n < count ? n : 0].weight); };
  const auto w0 = weight(0), w1 = weight(1), w2 = weight(2), w3 = weight(3);
  const float* s0 = sources[0].samples;
  const float* s1 = sources[count > 1 ? 1 : 0].samples;
  const float* s2 = sources[count > 2 ? 2 : 0].samples;
  const float* s3 = sources[count > 3 ? 3 : 0].samples;
  for (size_t i = 0; i < vectors * step; i += step) {
    auto sum = hn::Mul(w0, hn::LoadU(d, s0 + i));
    if constexpr (count > 1) sum = hn::Add(sum, hn::Mul(w1, hn::LoadU(d, s1 + i)));
    if constexpr (count > 2) sum = hn::Add(sum, hn::Mul(w2, hn::LoadU(d, s2 + i)));
    if constexpr (count > 3) sum = hn::Add(sum, hn::Mul(w3, hn::LoadU(d, s3 + i)));
    hn::Store(sum, d, line + i);
  }
}

// Adds one more source to a line that holds a sum already.
inline void addVectors(const WeightedSamples& source, size_t vectors, float* line) {
  const hn::ScalableTag<float> d;
  const auto weight = hn::Set(d, source.weight);
  for (size_t v = 0, i = 0; v < vectors; ++v, i += hn::Lanes(d)) {
    const auto added = hn::Mul(weight, hn::LoadU(d, source.samples + i));
    hn::Store(hn::Add(hn::Load(d, line + i), added), d, line + i);
  }
}

// The same sum where a source ends, one frame at a time.
inline void sumFrames(const WeightedSet& set, size_t first, size_t end, float* line) {
  for (size_t i = first; i < end; ++i) {
    float sum = 0;
    for (size_t n = 0; n < set.count; ++n) {
      const WeightedSamples& source = set.sources[n];
      if (i < source.frames) sum += source.weight * source.samples[i];
    }
    line[i] = sum;
  }
}

/// Writes `frames` samples of the weighted sum to `line`, with silence where a source has ended.
inline void sumLine(const WeightedSet& set, size_t frames, float* line) {
  const size_t lanes = hn::Lanes(hn::ScalableTag<float>());
  size_t common = set.count > 0 ? SIZE_MAX : 0;
  for (size_t n = 0; n < set.count; ++n)
    common = std::min(common, set.sources[n].frames);
  const size_t vectors = std::min((frames + lanes - 1) / lanes, common / lanes);
  const WeightedSamples* sources = set.sources.data();
  switch (set.count) {
    case 0:
      break;
    case 1:
      sumVectors<1>(sources, vectors, line);
      break;
    case 2:
      sumVectors<2>(sources, vectors, line);
      break;
    case 3:
      sumVectors<3>(sources, vectors, line);
      break;
    default:
      sumVectors<4>(sources, vectors, line);
      break;
  }
  for (size_t n = 4; n < set.count; ++n)
    addVectors(sources[n], vectors, line);
  sumFrames(set, vectors * lanes, frames, line);
}

/// The sources of `line` that sound at or after `firstFrame`, weighted by `weight(source)`.
template <typename Weight>
WeightedSet weightedSet(const Line& line, uint64_t firstFrame, Weight weight) {
  WeightedSet set;
  for (uint32_t n = 0; n < line.count; ++n) {
    const LineSource& source = line.sources[n];
    if (source.frames <= firstFrame) continue;
    set.sources[set.count++] = {.samples = source.samples + firstFrame,
                                .frames = static_cast<size_t>(source.frames - firstFrame),
                                .weight = weight(source)};
  }
  return set;
}

}  // namespace tobrin::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
