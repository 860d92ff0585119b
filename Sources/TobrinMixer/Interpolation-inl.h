/// Reads lines at fractional positions. Included once for every instruction set. Thread: render.
#if defined(TOBRIN_INTERPOLATION_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef TOBRIN_INTERPOLATION_INL_H
#undef TOBRIN_INTERPOLATION_INL_H
#else
#define TOBRIN_INTERPOLATION_INL_H
#endif

#include <array>

#include "MixKernels.h"
#include "MixerVoice.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace tobrin::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

using FloatTag = hn::ScalableTag<float>;
using IntTag = hn::RebindToSigned<FloatTag>;
using Floats = hn::Vec<FloatTag>;
using FloatMask = hn::Mask<FloatTag>;

constexpr int64_t oneFrame = static_cast<int64_t>(MixerVoice::one);
constexpr float frameFraction = 1.0F / static_cast<float>(MixerVoice::one);

/// Where a run of frames reads its line. The line's first sample is at the whole part of the
/// position.
struct ReadPath {
  int32_t fraction;  ///< of the first frame, fixed point
  int32_t rate;      ///< fixed point
};

/// Two neighbouring samples of a line for each lane.
struct Neighbours {
  Floats here, next;
};

/// For rates near 1. Across one vector the position drifts by at most one frame, so a lane's two
/// neighbours lie in three runs of consecutive samples: three plain loads, and no sample is fetched
/// by index. Within an octave of 1 each fraction is exact in single precision.
class NearRates {
 public:
  static bool suits(int64_t rate) {
    const int64_t drift = rate > oneFrame ? rate - oneFrame : oneFrame - rate;
    return drift * 8 <= oneFrame && drift * static_cast<int64_t>(hn::Lanes(FloatTag())) <= oneFrame;
  }

  NearRates(const ReadPath& path, size_t frames) : faster_(path.rate >= oneFrame) {
    const FloatTag d;
    const IntTag di;
    const auto lanes = static_cast<int32_t>(hn::Lanes(d));
    const int32_t drift = path.rate - static_cast<int32_t>(oneFrame);
    laneDrift_ = hn::Mul(hn::ConvertTo(d, hn::Mul(hn::Iota(di, 0), hn::Set(di, drift))),
                         hn::Set(d, frameFraction));
    // The first place of each vector, as many at a time as fit into one vector. The whole drift
    // within a stretch stays under 2^6 frames.
    const auto wholeMask = hn::Set(di, static_cast<int32_t>(oneFrame - 1));
    const auto below = hn::Set(d, faster_ ? 1.0F : 0.0F);
    const int32_t vectorDrift = drift * lanes;
    auto place =
        hn::Add(hn::Set(di, path.fraction), hn::Mul(hn::Iota(di, 0), hn::Set(di, vectorDrift)));
    auto index =
        hn::Sub(hn::Mul(hn::Iota(di, 0), hn::Set(di, lanes)), hn::Set(di, faster_ ? 0 : 1));
    const auto nextPlace = hn::Set(di, vectorDrift * lanes);
    const auto nextIndex = hn::Set(di, lanes * lanes);
    for (size_t v = 0; v * hn::Lanes(d) < frames; v += hn::Lanes(d)) {
      const auto whole = hn::ShiftRight<MixerVoice::fractionBits>(place);
      const auto part = hn::ConvertTo(d, hn::And(place, wholeMask));
      hn::Store(hn::Add(index, whole), di, starts_.data() + v);
      hn::Store(hn::Sub(hn::Mul(part, hn::Set(d, frameFraction)), below), d, offsets_.data() + v);
      place = hn::Add(place, nextPlace);
      index = hn::Add(index, nextIndex);
    }
  }

  /// Prepares to read the vector that begins at frame `vector * lanes`.
  void seek(size_t vector) {
    const FloatTag d;
    start_ = starts_[vector];
    const auto offset = hn::Add(laneDrift_, hn::Set(d, offsets_[vector]));
    early_ = hn::Lt(offset, hn::Zero(d));
    fraction_ = hn::IfThenElse(early_, hn::Add(offset, hn::Set(d, 1.0F)), offset);
  }

  [[nodiscard]] Floats fraction() const { return fraction_; }

  [[nodiscard]] Neighbours read(const float* line) const {
    const FloatTag d;
    const float* from = line + start_;
    const auto middle = hn::LoadU(d, from + 1);
    return {.here = hn::IfThenElse(early_, hn::LoadU(d, from), middle),
            .next = hn::IfThenElse(hn::Not(early_), hn::LoadU(d, from + 2), middle)};
  }

 private:
  bool faster_;
  Floats laneDrift_;
  FloatMask early_;
  Floats fraction_;
  int32_t start_ = 0;
  alignas(64) std::array<int32_t, stretchFrames + 16> starts_;
  alignas(64) std::array<float, stretchFrames + 16> offsets_;
};

/// Any rate: each lane fetches its samples by index.
class AnyRate {
 public:
  AnyRate(const ReadPath& path, size_t) : rate_(path.rate), first_(path.fraction) {
    const IntTag di;
    lanePlace_ = hn::Mul(hn::Iota(di, 0), hn::Set(di, path.rate));
  }

  void seek(size_t vector) {
    const FloatTag d;
    const IntTag di;
    const int64_t place = first_ + static_cast<int64_t>(vector * hn::Lanes(d)) * rate_;
    start_ = place >> MixerVoice::fractionBits;
    const auto part = static_cast<int32_t>(place & (oneFrame - 1));
    const auto places = hn::Add(lanePlace_, hn::Set(di, part));
    indices_ = hn::ShiftRight<MixerVoice::fractionBits>(places);
    const auto parts = hn::And(places, hn::Set(di, static_cast<int32_t>(oneFrame - 1)));
    fraction_ = hn::Mul(hn::ConvertTo(d, parts), hn::Set(d, frameFraction));
  }

  [[nodiscard]] Floats fraction() const { return fraction_; }

  [[nodiscard]] Neighbours read(const float* line) const {
    const FloatTag d;
    return {.here = hn::GatherIndex(d, line + start_, indices_),
            .next = hn::GatherIndex(d, line + start_ + 1, indices_)};
  }

 private:
  int64_t rate_;
  int64_t first_;
  int64_t start_ = 0;
  hn::Vec<IntTag> lanePlace_;
  hn::Vec<IntTag> indices_;
  Floats fraction_;
};

template <typename Reader>
HWY_INLINE Floats interpolated(const Reader& reader, const float* line) {
  const Neighbours samples = reader.read(line);
  const auto slope = hn::Sub(samples.next, samples.here);
  return hn::Add(samples.here, hn::Mul(reader.fraction(), slope));
}

HWY_INLINE void accumulate(float* mix, Floats added) {
  const FloatTag d;
  hn::StoreU(hn::Add(hn::LoadU(d, mix), added), d, mix);
}

}  // namespace tobrin::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
