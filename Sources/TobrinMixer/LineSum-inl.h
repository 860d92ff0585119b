/// Forms lines out of sources. Included once for every instruction set. Thread: render.
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

/// A run of samples, counted from a layer's first.
struct SampleSpan {
  uint64_t first;
  size_t frames;
  size_t common;  ///< samples from `first` on that every source has
};

// Adds up `count` sources, in order, over `vectors` whole vectors from the sample `first` on.
template <size_t count>
HWY_NOINLINE void sumVectors(const LineSource* sources, float LineSource::*weightOf, uint64_t first,
                             size_t vectors, float* line) {
  const hn::ScalableTag<float> d;
  const size_t step = hn::Lanes(d);
  const auto weight = [&](size_t n) { return hn::Set(d, sources[n < count ? n : 0].*weightOf); };
  const auto w0 = weight(0), w1 = weight(1), w2 = weight(2), w3 = weight(3);
  const float* s0 = sources[0].samples + first;
  const float* s1 = sources[count > 1 ? 1 : 0].samples + first;
  const float* s2 = sources[count > 2 ? 2 : 0].samples + first;
  const float* s3 = sources[count > 3 ? 3 : 0].samples + first;
  for (size_t i = 0; i < vectors * step; i += step) {
    auto sum = hn::Mul(w0, hn::LoadU(d, s0 + i));
    if constexpr (count > 1) sum = hn::Add(sum, hn::Mul(w1, hn::LoadU(d, s1 + i)));
    if constexpr (count > 2) sum = hn::Add(sum, hn::Mul(w2, hn::LoadU(d, s2 + i)));
    if constexpr (count > 3) sum = hn::Add(sum, hn::Mul(w3, hn::LoadU(d, s3 + i)));
    hn::Store(sum, d, line + i);
  }
}

// Adds one more source to a line that holds a sum already.
inline void addVectors(const LineSource& source, float weightOfSource, uint64_t first,
                       size_t vectors, float* line) {
  const hn::ScalableTag<float> d;
  const auto weight = hn::Set(d, weightOfSource);
  for (size_t v = 0, i = 0; v < vectors; ++v, i += hn::Lanes(d)) {
    const auto added = hn::Mul(weight, hn::LoadU(d, source.samples + first + i));
    hn::Store(hn::Add(hn::Load(d, line + i), added), d, line + i);
  }
}

// The same sum where a source ends, one frame at a time, from the span's frame `done` on.
inline void sumFrames(const Line& set, float LineSource::*weightOf, const SampleSpan& span,
                      size_t done, float* line) {
  for (size_t i = done; i < span.frames; ++i) {
    float sum = 0;
    for (size_t n = 0; n < set.count; ++n) {
      const LineSource& source = set.sources[n];
      if (span.first + i < source.frames) sum += source.*weightOf * source.samples[span.first + i];
    }
    line[i] = sum;
  }
}

/// Writes the weighted sum of a span of `set` to `line`; a source that has ended adds nothing.
/// `set` has at least one source.
inline void sumLine(const Line& set, float LineSource::*weightOf, const SampleSpan& span,
                    float* line) {
  const size_t lanes = hn::Lanes(hn::ScalableTag<float>());
  const size_t vectors = std::min((span.frames + lanes - 1) / lanes, span.common / lanes);
  const LineSource* sources = set.sources.data();
  switch (set.count) {
    case 1:
      sumVectors<1>(sources, weightOf, span.first, vectors, line);
      break;
    case 2:
      sumVectors<2>(sources, weightOf, span.first, vectors, line);
      break;
    case 3:
      sumVectors<3>(sources, weightOf, span.first, vectors, line);
      break;
    default:
      sumVectors<4>(sources, weightOf, span.first, vectors, line);
      break;
  }
  for (size_t n = 4; n < set.count; ++n)
    addVectors(sources[n], sources[n].*weightOf, span.first, vectors, line);
  if (vectors * lanes < span.frames) sumFrames(set, weightOf, span, vectors * lanes, line);
}

}  // namespace tobrin::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
