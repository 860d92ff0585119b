#include "MixKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "MixKernels.cpp"
#include "hwy/foreach_target.h"
// Comes after foreach_target.h, which sets what they compile to.
#include "Interpolation-inl.h"
#include "LineSum-inl.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace tobrin::HWY_NAMESPACE {
namespace {

struct StretchPlace {
  const VoiceStretch& stretch;
  MixScratch& scratch;
  uint32_t offset;
};

HWY_INLINE void accumulate(float* mix, Floats added) {
  const FloatTag d;
  hn::StoreU(hn::Add(hn::LoadU(d, mix), added), d, mix);
}

// Adds the lines to the mix; `shape` maps one vector of each line to one of each channel, and the
// vector's frames are counted for ramps.
template <typename Reader, typename AddVector>
void forEachVector(const VoiceStretch& stretch, AddVector addVector) {
  const FloatTag d;
  const size_t lanes = hn::Lanes(d);
  Reader reader({.fraction = static_cast<int32_t>(stretch.position & (MixerVoice::one - 1)),
                 .rate = static_cast<int32_t>(stretch.rate)},
                stretch.frames);
  size_t vector = 0;
  for (; (vector + 1) * lanes <= stretch.frames; ++vector) {
    reader.seek(vector);
    addVector(reader, vector * lanes, [](Floats value) { return value; });
  }
  const size_t rest = stretch.frames - vector * lanes;
  if (rest == 0) return;
  reader.seek(vector);
  const auto heard = hn::FirstN(d, rest);
  addVector(reader, vector * lanes,
            [heard](Floats value) { return hn::IfThenElseZero(heard, value); });
}

// What one vector of frames takes from the sums and from how they change on a ramp.
template <bool ramping, typename Reader>
HWY_INLINE Floats lineValue(const Reader& reader, const float* line, const float* step,
                            Floats rampFrame) {
  const auto steady = interpolated(reader, line);
  if constexpr (!ramping) return steady;
  return hn::Add(steady, hn::Mul(rampFrame, interpolated(reader, step)));
}

template <typename Reader, bool ramping>
void addLines(const StretchPlace& place, uint32_t channels) {
  const FloatTag d;
  const VoiceStretch& stretch = place.stretch;
  const std::array<const float*, 2> lines{place.scratch.lines[0].data() + MixScratch::front,
                                          place.scratch.lines[1].data() + MixScratch::front};
  const std::array<const float*, 2> steps{place.scratch.steps[0].data() + MixScratch::front,
                                          place.scratch.steps[1].data() + MixScratch::front};
  float* left = place.scratch.mix[0].data() + place.offset;
  float* right = place.scratch.mix[1].data() + place.offset;
  const auto value = [&](const Reader& reader, size_t line, size_t frame) HWY_ATTR {
    const auto rampFrame =
        ramping
            ? hn::ConvertTo(d, hn::Iota(IntTag(), static_cast<int32_t>(stretch.rampFrame + frame)))
            : hn::Zero(d);
    return lineValue<ramping>(reader, lines[line], steps[line], rampFrame);
  };
  if (channels == 1) {
    forEachVector<Reader>(stretch, [&](const Reader& reader, size_t frame, auto heard) HWY_ATTR {
      accumulate(left + frame, heard(value(reader, 0, frame)));
    });
  } else if (stretch.lineCount == 1) {
    const auto panLeft = hn::Set(d, stretch.panLeft);
    const auto panRight = hn::Set(d, stretch.panRight);
    forEachVector<Reader>(stretch, [&](const Reader& reader, size_t frame, auto heard) HWY_ATTR {
      const auto both = value(reader, 0, frame);
      accumulate(left + frame, heard(hn::Mul(panLeft, both)));
      accumulate(right + frame, heard(hn::Mul(panRight, both)));
    });
  } else {
    forEachVector<Reader>(stretch, [&](const Reader& reader, size_t frame, auto heard) HWY_ATTR {
      accumulate(left + frame, heard(value(reader, 0, frame)));
      accumulate(right + frame, heard(value(reader, 1, frame)));
    });
  }
}

void formLines(const VoiceStretch& stretch, MixScratch& scratch) {
  const uint64_t first = stretch.position >> MixerVoice::fractionBits;
  const uint64_t last =
      (stretch.position + (stretch.frames - 1) * stretch.rate) >> MixerVoice::fractionBits;
  const auto frames = static_cast<size_t>(last - first + 2);
  for (uint32_t n = 0; n < stretch.lineCount; ++n) {
    sumLine(weightedSet(stretch.lines[n], first, [](const LineSource& s) { return s.gain; }),
            frames, scratch.lines[n].data() + MixScratch::front);
    if (!stretch.ramping) continue;
    sumLine(weightedSet(stretch.lines[n], first, [](const LineSource& s) { return s.step; }),
            frames, scratch.steps[n].data() + MixScratch::front);
  }
}

void addStretch(const VoiceStretch& stretch, MixScratch& scratch, uint32_t channels,
                uint32_t offset) noexcept {
  if (stretch.frames == 0) return;
  formLines(stretch, scratch);
  const StretchPlace place{.stretch = stretch, .scratch = scratch, .offset = offset};
  if (NearRates::suits(static_cast<int64_t>(stretch.rate))) {
    stretch.ramping ? addLines<NearRates, true>(place, channels)
                    : addLines<NearRates, false>(place, channels);
  } else {
    stretch.ramping ? addLines<AnyRate, true>(place, channels)
                    : addLines<AnyRate, false>(place, channels);
  }
}

// What has no size, neither small nor large, becomes silence, lest it reach the device.
HWY_NOINLINE Floats softLimited(Floats sample) {
  const FloatTag d;
  const auto size = hn::Abs(sample);
  const auto over =
      hn::Sub(hn::Set(d, 1.0F), hn::Div(hn::Set(d, 0.04F), hn::Sub(size, hn::Set(d, 0.6F))));
  const auto below = hn::Min(over, hn::Set(d, 0x1.fffffep-1F));
  const auto limited = hn::IfThenElse(hn::Gt(size, hn::Set(d, 0.8F)), below, size);
  return hn::IfThenElseZero(hn::Eq(sample, sample), hn::CopySign(limited, sample));
}

HWY_INLINE Floats finished(Floats sample, Floats gain) {
  const FloatTag d;
  const auto loud = hn::Mul(gain, sample);
  const auto quiet = hn::Le(hn::Abs(loud), hn::Set(d, 0.8F));
  return HWY_LIKELY(hn::AllTrue(d, quiet)) ? loud : softLimited(loud);
}

void finish(const float* mix, float* output, uint32_t frames, const MasterRamp& ramp,
            uint32_t firstFrame) noexcept {
  const FloatTag d;
  const size_t lanes = hn::Lanes(d);
  const auto start = hn::Set(d, ramp.start);
  const auto step = hn::Set(d, ramp.step);
  const auto vector = [&](size_t frame) HWY_ATTR {
    const auto count =
        hn::ConvertTo(d, hn::Iota(IntTag(), static_cast<int32_t>(firstFrame + frame + 1)));
    return finished(hn::Load(d, mix + frame), hn::Add(start, hn::Mul(step, count)));
  };
  size_t frame = 0;
  for (; frame + lanes <= frames; frame += lanes)
    hn::StoreU(vector(frame), d, output + frame);
  if (frame == frames) return;
  alignas(64) std::array<float, HWY_MAX_BYTES / sizeof(float)> rest;
  hn::Store(vector(frame), d, rest.data());
  std::copy_n(rest.data(), frames - frame, output + frame);
}

const MixKernels& kernels() {
  static constexpr MixKernels table{.addStretch = addStretch, .finish = finish};
  return table;
}

}  // namespace
}  // namespace tobrin::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace tobrin {

HWY_EXPORT(kernels);

const MixKernels& chooseMixKernels() noexcept {
  hwy::GetChosenTarget().Update(hwy::SupportedTargets());
  return HWY_DYNAMIC_DISPATCH(kernels)();
}

}  // namespace tobrin

#endif
