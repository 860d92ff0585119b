#include "MixKernels.h"

#include <cassert>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "MixKernels.cpp"
#include "hwy/foreach_target.h"
// After foreach_target.h, which chooses the instruction set that they are compiled for.
#include "Interpolation-inl.h"
#include "LineSum-inl.h"
#include "WindowMix-inl.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace tobrin::HWY_NAMESPACE {
namespace {

// `first`, `first + 1` and so on, one a lane.
HWY_INLINE Floats frameNumbers(uint32_t first) {
  const IntTag di;
  return hn::ConvertTo(FloatTag(),
                       hn::Add(hn::Iota(di, 0), hn::Set(di, static_cast<int32_t>(first))));
}

// Calls `addVector(reader, frame, heard)` for every vector of the stretch; `heard` silences the
// lanes past the stretch's end.
template <typename Reader, typename AddVector>
void forEachVector(const FormedStretch& stretch, AddVector addVector) {
  const FloatTag d;
  const size_t lanes = hn::Lanes(d);
  const uint32_t frames = stretch.span.frames;
  Reader reader({.fraction = static_cast<int32_t>(stretch.fraction),
                 .rate = static_cast<int32_t>(stretch.rate)},
                frames);
  size_t vector = 0;
  for (; (vector + 1) * lanes <= frames; ++vector) {
    reader.seek(vector);
    addVector(reader, vector * lanes, [](Floats value) { return value; });
  }
  const size_t rest = frames - vector * lanes;
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
void addLinesWith(const FormedStretch& stretch, MixBuffer& mix) {
  const FloatTag d;
  constexpr size_t front = FormedStretch::front;
  const std::array<const float*, 2> lines{stretch.sums[0].data() + front,
                                          stretch.sums[1].data() + front};
  const std::array<const float*, 2> steps{stretch.steps[0].data() + front,
                                          stretch.steps[1].data() + front};
  float* left = mix[0].data() + stretch.span.offset;
  float* right = mix[1].data() + stretch.span.offset;
  const auto value = [&](const Reader& reader, size_t line, size_t frame) HWY_ATTR {
    const auto rampFrame =
        ramping ? frameNumbers(stretch.rampFrame + static_cast<uint32_t>(frame)) : hn::Zero(d);
    return lineValue<ramping>(reader, lines[line], steps[line], rampFrame);
  };
  if (stretch.channels == 1) {
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

// Copies what the stretch needs of the voice, which moves on before the stretch is added.
void describe(const MixerVoice& voice, MixSpan span, FormedStretch& formed) {
  formed.fraction = voice.fraction();
  formed.rate = voice.rate;
  formed.span = span;
  formed.rampFrame = voice.rampFrame;
  formed.ramping = voice.rampLeft > 0;
  formed.channels = voice.lines.channels;
  formed.lineCount = voice.lines.lineCount;
  formed.panLeft = voice.panLeft;
  formed.panRight = voice.panRight;
}

void formLines(const MixerVoice& voice, MixSpan span, FormedStretch& formed) {
  describe(voice, span, formed);
  const uint64_t last =
      (formed.fraction + (span.frames - 1) * formed.rate) >> MixerVoice::fractionBits;
  const SampleSpan samples{.first = voice.frame(),
                           .frames = static_cast<size_t>(last + 2),
                           .common = voice.lines.shortest - voice.frame()};
  for (uint32_t n = 0; n < formed.lineCount; ++n) {
    const Line& line = voice.lines.lines[n];
    sumLine(line, &LineSource::gain, samples, formed.sums[n].data() + FormedStretch::front);
    if (formed.ramping)
      sumLine(line, &LineSource::step, samples, formed.steps[n].data() + FormedStretch::front);
  }
}

void addLines(const FormedStretch& stretch, MixBuffer& mix) {
  if (NearRates::suits(static_cast<int64_t>(stretch.rate))) {
    stretch.ramping ? addLinesWith<NearRates, true>(stretch, mix)
                    : addLinesWith<NearRates, false>(stretch, mix);
  } else {
    stretch.ramping ? addLinesWith<AnyRate, true>(stretch, mix)
                    : addLinesWith<AnyRate, false>(stretch, mix);
  }
}

void addPending(MixSpace& space) noexcept {
  if (space.pending != nullptr) addLines(*space.pending, space.mix);
  space.pending = nullptr;
}

// Lines are formed now but added at the next call: reading them while the sums are still on their
// way to the cache would stall. Either way, voices are added in their order.
void addStretch(const MixerVoice& voice, MixSpan span, MixSpace& space) noexcept {
  assert(span.frames > 0 && span.offset + span.frames <= stretchFrames);
  if (suitsWindows(voice, span.frames)) {
    addPending(space);
    addWindows(voice, span, space.mix);
    return;
  }
  FormedStretch& formed = space.pending == space.formed.data() ? space.formed[1] : space.formed[0];
  formLines(voice, span, formed);
  addPending(space);
  space.pending = &formed;
}

// NaN becomes silence: it must not reach the device.
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

// Calls `gain(frame)` for the gains of a vector of frames.
template <typename Gain>
HWY_INLINE void finishWith(const float* mix, float* output, uint32_t frames, Gain gain) {
  const FloatTag d;
  const auto lanes = static_cast<uint32_t>(hn::Lanes(d));
  uint32_t frame = 0;
  for (; frame + lanes <= frames; frame += lanes)
    hn::StoreU(finished(hn::Load(d, mix + frame), gain(frame)), d, output + frame);
  if (frame == frames) return;
  alignas(64) std::array<float, HWY_MAX_BYTES / sizeof(float)> rest;
  hn::Store(finished(hn::Load(d, mix + frame), gain(frame)), d, rest.data());
  std::copy_n(rest.data(), frames - frame, output + frame);
}

void finish(const float* mix, float* output, uint32_t frames, const MasterRamp& ramp) noexcept {
  const FloatTag d;
  const auto start = hn::Set(d, ramp.start);
  const auto step = hn::Set(d, ramp.step);
  if (ramp.step == 0) {
    finishWith(mix, output, frames, [start](uint32_t) HWY_ATTR { return start; });
  } else {
    finishWith(mix, output, frames, [=](uint32_t frame) HWY_ATTR {
      return hn::Add(start, hn::Mul(step, frameNumbers(frame + 1)));
    });
  }
}

const MixKernels& kernels() {
  static constexpr MixKernels table{
      .addStretch = addStretch, .addPending = addPending, .finish = finish};
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
