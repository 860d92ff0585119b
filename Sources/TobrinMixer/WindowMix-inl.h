/// Mixes a stretch without storing its lines: where one instruction picks lanes out of two vectors,
/// the sums stay in registers between forming and interpolating. Included once for every
/// instruction set. Thread: render.
#if defined(TOBRIN_WINDOW_MIX_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef TOBRIN_WINDOW_MIX_INL_H
#undef TOBRIN_WINDOW_MIX_INL_H
#else
#define TOBRIN_WINDOW_MIX_INL_H
#endif

#include <algorithm>
#include <array>

#include "Interpolation-inl.h"
#include "MixKernels.h"
#include "hwy/highway.h"

HWY_BEFORE_NAMESPACE();
namespace tobrin::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_AVX3 || HWY_TARGET == HWY_AVX3_DL

constexpr int32_t windowLanes = 16;

/// The lanes of a vector read their samples from a window of two vectors, which moves on by one
/// vector each time. A run lasts until the drift of the position leaves the window.
struct WindowRun {
  int64_t base;     ///< the window's first sample, counted from the layers'
  int32_t place;    ///< of the first frame in the window, fixed point
  uint32_t frames;  ///< the run's length
};

constexpr int32_t fixedPoint(int32_t frames) {
  return frames << MixerVoice::fractionBits;
}

inline int32_t driftOf(const MixerVoice& voice) {
  return static_cast<int32_t>(static_cast<int64_t>(voice.rate) - oneFrame);
}

// The place that a run's first frame may have at most, so that its last lane still finds both of
// its neighbours in the window.
inline int32_t highestPlace(int32_t drift) {
  return fixedPoint(windowLanes) - 1 - std::max(drift, 0) * (windowLanes - 1);
}

// How far before the first frame's sample the window should begin: on a cache line if the whole
// rest of the stretch can be one run.
inline int32_t samplesBefore(int32_t drift, const float* sample, int32_t fraction,
                             int32_t wholeDrift) {
  const int32_t highest = (highestPlace(drift) - fraction) >> MixerVoice::fractionBits;
  const int32_t atLeast = wholeDrift < 0 ? (-wholeDrift >> MixerVoice::fractionBits) + 1 : 0;
  const int32_t atMost =
      highest - (wholeDrift > 0 ? (wholeDrift >> MixerVoice::fractionBits) + 1 : 0);
  const auto pastLine =
      static_cast<int32_t>((reinterpret_cast<uintptr_t>(sample) / sizeof(float)) % windowLanes);
  return std::clamp(pastLine, std::min(atLeast, highest), std::max(atMost, 0));
}

// Vectors until a place that moves by `drift` each leaves the window; it does move.
inline uint32_t vectorsInWindow(int32_t place, int32_t drift, int32_t highest) {
  if (drift > 0) return static_cast<uint32_t>((highest - place) / drift) + 1;
  return static_cast<uint32_t>(place / -drift) + 1;  // cppcheck-suppress zerodivcond
}

// The run of at most `frames` frames that begins at `position`.
inline WindowRun runFrom(const MixerVoice& voice, uint64_t position, uint32_t frames) {
  const int32_t drift = driftOf(voice);
  const auto first = static_cast<int64_t>(position >> MixerVoice::fractionBits);
  const auto fraction = static_cast<int32_t>(position & (MixerVoice::one - 1));
  const int32_t wholeDrift = drift * windowLanes * static_cast<int32_t>((frames - 1) / windowLanes);
  const float* samples = voice.lines.lines[0].sources[0].samples;
  const auto before = static_cast<int32_t>(
      std::min<int64_t>(samplesBefore(drift, samples + first, fraction, wholeDrift), first));
  WindowRun run{.base = first - before, .place = fixedPoint(before) + fraction, .frames = frames};
  const int32_t highest = highestPlace(drift);
  if (run.place + wholeDrift < 0 || run.place + wholeDrift > highest) {
    const uint32_t fitting = vectorsInWindow(run.place, drift * windowLanes, highest);
    run.frames = std::min(run.frames, fitting * windowLanes);
  }
  return run;
}

/// The sources of one line from a window's first sample on.
template <size_t count>
class WindowLine {
 public:
  WindowLine(const Line& line, int64_t base) {
    for (size_t n = 0; n < count; ++n) {
      samples_[n] = line.sources[n].samples + base;
      weights_[n] = hn::Set(FloatTag(), line.sources[n].gain).raw;
    }
  }

  HWY_INLINE Floats sum(uint32_t frame) const {
    const FloatTag d;
    auto sum = hn::Mul(Floats{weights_[0]}, hn::LoadU(d, samples_[0] + frame));
    for (size_t n = 1; n < count; ++n)
      sum = hn::Add(sum, hn::Mul(Floats{weights_[n]}, hn::LoadU(d, samples_[n] + frame)));
    return sum;
  }

 private:
  std::array<const float*, count> samples_;
  __m512 weights_[count];
};

HWY_INLINE Floats picked(Floats low, hn::Vec<IntTag> index, Floats high) {
  return Floats{_mm512_permutex2var_ps(low.raw, index.raw, high.raw)};
}

/// The places of a vector's lanes in the window, as indices and fractions.
struct WindowPlaces {
  hn::Vec<IntTag> here, next;
  Floats fraction;

  explicit WindowPlaces(hn::Vec<IntTag> places) {
    const FloatTag d;
    const IntTag di;
    here = hn::ShiftRight<MixerVoice::fractionBits>(places);
    next = hn::Add(here, hn::Set(di, 1));
    const auto parts = hn::And(places, hn::Set(di, static_cast<int32_t>(oneFrame - 1)));
    fraction = hn::Mul(hn::ConvertTo(d, parts), hn::Set(d, frameFraction));
  }

  HWY_INLINE Floats interpolate(Floats low, Floats high) const {
    const auto sample = picked(low, here, high);
    return hn::Add(sample, hn::Mul(fraction, hn::Sub(picked(low, next, high), sample)));
  }
};

enum class MixShape { oneToOne, oneToTwo, twoToTwo };

template <size_t count, MixShape shape>
void addRun(const MixerVoice& voice, const WindowRun& run, float* left, float* right) {
  const FloatTag d;
  const IntTag di;
  constexpr bool two = shape == MixShape::twoToTwo;
  const VoiceLines& lines = voice.lines;
  const WindowLine<count> first(lines.lines[0], run.base);
  const WindowLine<count> second(lines.lines[two ? 1 : 0], run.base);
  const auto panLeft = hn::Set(d, voice.panLeft);
  const auto panRight = hn::Set(d, voice.panRight);
  auto places = hn::Add(hn::Mul(hn::Iota(di, 0), hn::Set(di, static_cast<int32_t>(voice.rate))),
                        hn::Set(di, run.place));
  const auto advance = hn::Set(di, driftOf(voice) * windowLanes);
  auto low = first.sum(0);
  auto lowSecond = two ? second.sum(0) : low;
  const auto addVector = [&](uint32_t frame, auto heard) HWY_ATTR {
    const WindowPlaces window(places);
    places = hn::Add(places, advance);
    const auto high = first.sum(frame + windowLanes);
    const auto value = window.interpolate(low, high);
    low = high;
    accumulate(left + frame, heard(shape == MixShape::oneToTwo ? hn::Mul(panLeft, value) : value));
    if constexpr (shape == MixShape::oneToTwo)
      accumulate(right + frame, heard(hn::Mul(panRight, value)));
    if constexpr (two) {
      const auto highSecond = second.sum(frame + windowLanes);
      accumulate(right + frame, heard(window.interpolate(lowSecond, highSecond)));
      lowSecond = highSecond;
    }
  };
  const auto all = [](Floats value) { return value; };
  const uint32_t frames = run.frames;
  uint32_t frame = 0;
#pragma GCC unroll 2
  for (; frame + windowLanes <= frames; frame += windowLanes)
    addVector(frame, all);
  if (frame == frames) return;
  const auto mask = hn::FirstN(d, frames - frame);
  addVector(frame, [mask](Floats value) { return hn::IfThenElseZero(mask, value); });
}

template <MixShape shape>
void addRunOf(const MixerVoice& voice, const WindowRun& run, float* left, float* right) {
  switch (voice.lines.lines[0].count) {
    case 1:
      return addRun<1, shape>(voice, run, left, right);
    case 2:
      return addRun<2, shape>(voice, run, left, right);
    case 3:
      return addRun<3, shape>(voice, run, left, right);
    default:
      return addRun<4, shape>(voice, run, left, right);
  }
}

/// Whether the voice has steady gains, a rate near 1, and enough samples past the next `frames`.
inline bool suitsWindows(const MixerVoice& voice, uint32_t frames) {
  const uint32_t count = voice.lines.lines[0].count;
  if (voice.rampLeft > 0 || count > TB_LAYERS) return false;
  if (!NearRates::suits(static_cast<int64_t>(voice.rate))) return false;
  const uint64_t last = (voice.position + frames * voice.rate) >> MixerVoice::fractionBits;
  return last + 3 * windowLanes <= voice.lines.shortest;
}

inline void addWindows(const MixerVoice& voice, MixSpan span, MixBuffer& mix) {
  for (uint32_t done = 0; done < span.frames;) {
    const WindowRun run = runFrom(voice, voice.position + done * voice.rate, span.frames - done);
    float* left = mix[0].data() + span.offset + done;
    float* right = mix[1].data() + span.offset + done;
    if (voice.lines.channels == 1) {
      addRunOf<MixShape::oneToOne>(voice, run, left, right);
    } else if (voice.lines.lineCount == 1) {
      addRunOf<MixShape::oneToTwo>(voice, run, left, right);
    } else {
      addRunOf<MixShape::twoToTwo>(voice, run, left, right);
    }
    done += run.frames;
  }
}

#else

inline bool suitsWindows(const MixerVoice&, uint32_t) {
  return false;
}
inline void addWindows(const MixerVoice&, MixSpan, MixBuffer&) {}

#endif

}  // namespace tobrin::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
