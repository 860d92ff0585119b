#include "Importing/SoundCutting.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <span>

#include "Building/TakeCutter.h"

namespace tobrin {
namespace {

using Take = RecordedTake;

constexpr double longestMs = 2000;   // no key sounds longer
constexpr double shortestMs = 2;     // a shorter sound is heard as a click
constexpr double warmUpMs = 50;      // for the rumble filter to settle
constexpr float silence = 3e-4f;     // root mean square of a millisecond, about -70 dB
constexpr float onsetShare = 0.05f;  // of the loudest millisecond: before, the room is heard
constexpr float tailShare = 0.001f;  // -60 dB
constexpr double tailMs = 5;         // kept after it, to fade in
constexpr double endSearchMs = 30;   // before the end of a part, for a quiet place to cut
constexpr float quietShare = 0.5f;   // of the end's level: 6 dB quieter is worth an earlier cut
constexpr double joinMs = 5;         // a release that begins this near the press's end goes on

struct Range {
  std::size_t begin = 0;
  std::size_t end = 0;

  [[nodiscard]] std::size_t size() const { return end - begin; }
};

std::size_t frames(const SampleBuffer& sound, double ms) {
  return static_cast<std::size_t>(std::max(ms, 0.0) / 1000 * sound.sampleRate());
}

/// Where a part lies in its file; nothing where that is nowhere.
std::optional<Range> rangeOf(const SampleBuffer& sound, const SoundRef::Part& part) {
  const double lastMs = sound.duration() * 1000;
  if (!(part.startMs >= 0) || !(part.startMs < lastMs) || !(part.lengthMs > 0)) return std::nullopt;
  const Range range{frames(sound, part.startMs),
                    std::min(frames(sound, std::min(part.endMs(), lastMs)), sound.frames())};
  return range.end > range.begin ? std::optional(range) : std::nullopt;
}

/// A constant offset, which some sound cards add, is no sound.
double offsetOf(const float* channel, Range range) {
  const double sum = std::accumulate(channel + range.begin, channel + range.end, 0.0);
  return sum / static_cast<double>(range.size());
}

/// Root mean square of each millisecond, both channels together.
std::vector<float> envelope(const SampleBuffer& sound, Range range) {
  const double leftOffset = offsetOf(sound.left(), range);
  const double rightOffset = offsetOf(sound.right(), range);
  const std::size_t step = std::max<std::size_t>(frames(sound, 1), 1);
  std::vector<float> levels;
  for (std::size_t at = range.begin; at < range.end; at += step) {
    const std::size_t count = std::min(step, range.end - at);
    double sum = 0;
    for (std::size_t i = at; i < at + count; ++i) {
      const double left = static_cast<double>(sound.left()[i]) - leftOffset;
      const double right = static_cast<double>(sound.right()[i]) - rightOffset;
      sum += left * left + right * right;
    }
    levels.push_back(static_cast<float>(std::sqrt(sum / (2 * static_cast<double>(count)))));
  }
  return levels;
}

/// The quietest millisecond shortly before the end, where that is worth an earlier cut: an end that
/// rises is the next key's sound.
std::size_t quietEnd(const std::vector<float>& levels) {
  const auto search = std::min(static_cast<std::size_t>(endSearchMs), levels.size() / 4);
  const auto from = levels.end() - static_cast<std::ptrdiff_t>(search);
  const auto quietest = std::min_element(from, levels.end());
  if (quietest == levels.end()) return levels.size();
  const float loudestAfter = *std::max_element(quietest, levels.end());
  return *quietest < quietShare * loudestAfter
             ? static_cast<std::size_t>(quietest - levels.begin()) + 1
             : levels.size();
}

/// The part of a range that sounds.
std::optional<Range> audible(const SampleBuffer& sound, Range range) {
  std::vector<float> levels = envelope(sound, range);
  levels.resize(std::min(quietEnd(levels), static_cast<std::size_t>(longestMs)));
  // The last millisecond may be a short one.
  const std::size_t quiet =
      std::min(range.end, range.begin + frames(sound, static_cast<double>(levels.size())));
  const float loudest = levels.empty() ? 0 : *std::ranges::max_element(levels);
  if (loudest < silence) return std::nullopt;
  const auto isAbove = [&](float share) {
    return [limit = std::max(share * loudest, silence / 10)](float x) { return x >= limit; };
  };
  const auto first = std::ranges::find_if(levels, isAbove(onsetShare)) - levels.begin();
  const auto afterLast =
      levels.rend() - std::find_if(levels.rbegin(), levels.rend(), isAbove(tailShare));
  const std::size_t end = range.begin + frames(sound, static_cast<double>(afterLast) + tailMs);
  return Range{range.begin + frames(sound, static_cast<double>(first)), std::min(end, quiet)};
}

/// The first sample of the sound's first millisecond that stands out from what was before.
std::size_t onsetIn(const SampleBuffer& sound, Range range) {
  const auto size = [&](std::size_t i) {
    return std::max(std::fabs(sound.left()[i]), std::fabs(sound.right()[i]));
  };
  const std::size_t end = std::min(range.end, range.begin + frames(sound, 1));
  float largest = 0;
  for (std::size_t i = range.begin; i < end; ++i)
    largest = std::max(largest, size(i));
  for (std::size_t i = range.begin; i < end; ++i)
    if (size(i) >= 0.25f * largest) return i;
  return range.begin;
}

/// A range with `lead` frames before it; where the file has none, its first sample stands there, so
/// that nothing jumps.
std::vector<float> withLead(const float* channel, Range range, std::size_t lead) {
  const std::size_t missing = lead - std::min(lead, range.begin);
  std::vector<float> samples(missing, channel[0]);
  samples.insert(samples.end(), channel + range.begin - (lead - missing), channel + range.end);
  return samples;
}

Take cut(const SampleBuffer& sound, Range range) {
  const std::size_t lead = frames(sound, warmUpMs);
  const std::size_t onset = onsetIn(sound, range);
  const std::vector<float> left = withLead(sound.left(), range, lead);
  const std::vector<float> right = withLead(sound.right(), range, lead);
  const TakeCutter cutter({left, right, {}, sound.sampleRate()}, {});
  RecordedHit hit;
  hit.onset = lead + onset - range.begin;
  hit.gapAfter = left.size() - hit.onset;
  return *cutter.cut(hit, longestMs, 0);
}

std::string placeOf(const SoundRef& ref) {
  if (!ref.part) return ref.file->name;
  return ref.file->name + " at " + std::to_string(std::lround(ref.part->startMs)) + " ms";
}

float loudest(const std::vector<float>& levels, std::size_t first, std::size_t count) {
  const std::size_t begin = std::min(first, levels.size());
  const auto part = std::span(levels).subspan(begin, std::min(count, levels.size() - begin));
  return part.empty() ? 0 : *std::ranges::max_element(part);
}

/// Whether something is struck right at the start of `release`, against the end of `press`.
bool beginsWithAStroke(const SampleBuffer& sound, Range press, Range release, bool isHalf) {
  // A sound taken in two in its middle may hold a stroke somewhere; one that was cut to its release
  // begins with it.
  const std::size_t within = isHalf ? 15 : 30;  // ms
  const std::vector<float> before = envelope(sound, press);
  const std::vector<float> after = envelope(sound, release);
  const float end = loudest(before, before.size() - std::min<std::size_t>(before.size(), 5), 5);
  return loudest(after, 0, within) > std::max(2 * end, silence);
}

}  // namespace

std::optional<Take> cutSound(const SampleBuffer& sound, const SoundRef& ref, ImportNotes& notes) {
  const SoundRef::Part whole{0, sound.duration() * 1000};
  const auto range = rangeOf(sound, ref.part.value_or(whole));
  if (!range) {
    notes.leftOut("parts that lie outside their file", placeOf(ref));
    return std::nullopt;
  }
  constexpr double tolerated = 1;  // ms; some programs round up
  if (ref.part && ref.part->endMs() > sound.duration() * 1000 + tolerated)
    notes.guessed("parts that reach past the end of their file end with it", placeOf(ref));
  const auto heard = audible(sound, *range);
  if (!heard || heard->size() < frames(sound, shortestMs)) {
    notes.leftOut("sounds that are silent", placeOf(ref));
    return std::nullopt;
  }
  return cut(sound, *heard);
}

bool belongsToPress(const SampleBuffer& sound, const SoundRef::Part& press,
                    const SoundRef::Part& release) {
  const auto down = rangeOf(sound, press);
  const auto up = rangeOf(sound, release);
  if (!down || !up) return false;
  const std::size_t begin = std::max(down->begin, up->begin);
  const std::size_t end = std::min(down->end, up->end);
  if (end > begin && 2 * (end - begin) >= up->size()) return true;
  if (std::fabs(release.startMs - press.endMs()) > joinMs) return false;
  const bool isHalf = std::fabs(release.lengthMs - press.lengthMs) <= 2;  // rounded to ms
  return !beginsWithAStroke(sound, *down, *up, isHalf);
}

}  // namespace tobrin
