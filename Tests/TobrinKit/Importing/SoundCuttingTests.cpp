#include "Importing/SoundCutting.h"

#include <gtest/gtest.h>

#include <cmath>

#include "Building/TakeCollection.h"

namespace tobrin {
namespace {

/// Decaying strokes, one each 100 ms from 20 ms on, on a constant offset; rumble included.
SampleBuffer typing(std::size_t frames, float offset) {
  std::vector<float> samples(frames);
  for (std::size_t n = 0; n < frames; ++n) {
    const double at = std::fmod(static_cast<double>(n) / 48000 + 0.08, 0.1);
    const double stroke = n < 960 ? 0 : std::exp(-at / 0.01) * std::sin(9000 * at);
    samples[n] = offset + static_cast<float>(0.4 * stroke);
  }
  return {samples, {}, 48000};
}

TEST(SoundCutting, CutsFromOnsetToQuietAndLeavesNoClickNorTheNextStroke) {
  const SampleBuffer sound = typing(9600 + 20, 0.2f);
  const SourceFiles::File file{"s.wav", {}, 1};
  const std::tuple<SoundRef::Part, double, double> rows[] = {
      {{0, 100}, 75, 90},    // silence before the onset is cut off
      {{15, 110}, 75, 90},   // the next stroke begins in it
      {{60, 70}, 50, 60},    // begun in a tail, and ended in the next stroke
      {{120, 900}, 75, 90},  // past the end of the file, which is no whole millisecond
  };
  for (const auto& [part, least, most] : rows) {
    ImportNotes notes;
    const auto take = cutSound(sound, {&file, part}, notes);
    ASSERT_TRUE(take) << part.startMs;
    const double ms = static_cast<double>(take->left.size()) / 48;
    EXPECT_TRUE(ms > least && ms < most) << part.startMs << ": " << ms << " ms";
    EXPECT_LT(std::fabs(take->left.front()), 0.01f) << part.startMs;
    EXPECT_LT(std::fabs(take->left.back()), 0.01f) << part.startMs;
    EXPECT_LT(peak(*take), 0.45f) << part.startMs << ": the offset is gone";
  }
  ImportNotes notes;
  const auto toTheEnd = cutSound(typing(5860, 0), {&file, SoundRef::Part{119, 900}}, notes);
  ASSERT_TRUE(toTheEnd);
  EXPECT_LE(toTheEnd->left.size(), 100u + 72) << "the last 100 frames of the file, and a fade";
  for (const SoundRef::Part part : {SoundRef::Part{-1, 50}, {500, 50}, {0, 0}, {0, -5}, {0, 15}})
    EXPECT_FALSE(cutSound(typing(9600, 0), {&file, part}, notes)) << part.startMs;
}

}  // namespace
}  // namespace tobrin
