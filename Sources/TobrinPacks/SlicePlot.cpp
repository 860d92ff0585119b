#include "SlicePlot.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "Building/HitDetector.h"
#include "Building/TierAssignment.h"
#include "Recording/TierCounts.h"
#include "SvgDocument.h"

namespace tobrin {
namespace {

using Fate = HitFate;
using Result = SlicedRecording;
using Anchor = SvgDocument::Anchor;

struct FateStyle {
  Fate fate;
  const char* label;
  const char* color;
};

constexpr std::array<FateStyle, 7> styles = {{{Fate::press, "press", "#1f77d0"},
                                              {Fate::bigPress, "big press", "#8a2fd0"},
                                              {Fate::release, "release", "#1f9a5f"},
                                              {Fate::clipped, "clipped", "#e02030"},
                                              {Fate::overlapping, "dropped: overlaps", "#e08a00"},
                                              {Fate::faint, "dropped: too faint", "#6f6f78"},
                                              {Fate::repeated, "dropped: repeated", "#b06a50"}}};

struct TierStyle {
  const char* band;
  const char* bar;
};
constexpr std::array<TierStyle, tierCount> tierStyles = {{{"#e3f0fb", "#5aa2dd"},
                                                          {"#e0f3e8", "#46b27c"},
                                                          {"#fcefd6", "#e0a030"},
                                                          {"#fbe0e1", "#dd5560"}}};
constexpr const char* unusedBar = "#c9c9d2";
constexpr const char* quietText = "#5f5f6b";
constexpr const char* noiseColor = "#c02030";

constexpr double margin = 64;
constexpr double plotWidth = 1400;
constexpr double rankTop = 76;
constexpr double rankHeight = 190;
constexpr double waveTop = rankTop + rankHeight + 86;
constexpr double rowHeight = 132;
constexpr double rowGap = 30;
constexpr double fewestSecondsARow = 5;
constexpr double mostSecondsARow = 15;
constexpr double quietestDb = -96;  // of 16 bits
constexpr double silenceDb = -120;

const FateStyle& styleOf(Fate fate) {
  return styles[static_cast<std::size_t>(fate)];
}

constexpr double strokeSeconds = 0.015;  // within which a hit is loudest

std::vector<float> mixed(std::span<const float> left, std::span<const float> right) {
  std::vector<float> mono(left.size());
  for (std::size_t i = 0; i < left.size(); ++i)
    mono[i] = (left[i] + right[i]) * 0.5f;
  return mono;
}

class Drawing {
 public:
  Drawing(const Result& result, std::span<const float> left, std::span<const float> right,
          double rate, const SlicerOptions& options)
      : result_(result),
        rate_(rate),
        options_(options),
        levels_(detectionLevels(mixed(left, right), rate)),
        secondsARow_(std::clamp(static_cast<double>(left.size()) / rate, fewestSecondsARow,
                                mostSecondsARow)),
        rows_(static_cast<std::size_t>(
            std::max(1.0, std::ceil(static_cast<double>(left.size()) / rate / secondsARow_)))),
        svg_(plotWidth + 2 * margin,
             waveTop + static_cast<double>(rows_) * (rowHeight + rowGap) + 12) {
    highDb_ = std::max(levelWithin(0, static_cast<double>(left.size()) / rate), quietestDb + 24);
    lowDb_ = std::max({decibels(result.noiseFloor) - 6, quietestDb, highDb_ - 80});
  }

  std::string document() && {
    legend();
    const double half = plotWidth / 2 - 40;
    ranking(Fate::press, KeyGroup::alpha, "ordinary keys, by energy", margin,
            options_.alphaVariants);
    ranking(Fate::bigPress, KeyGroup::space, "wide keys, by energy", margin + plotWidth - half,
            options_.bigVariants);
    svg_.label(margin, waveTop - 22,
               SvgDocument::formatted("Level above 700 Hz%s, %.0f to %.0f dB: presses point up, "
                                      "releases down, what is dropped both ways",
                                      gainText().c_str(), lowDb_,
                                      std::round(highDb_) + 0.0));  // no "-0"
    svg_.label(margin + plotWidth, waveTop - 22,
               SvgDocument::formatted("- - noise floor %.1f dB", decibels(result_.noiseFloor)),
               noiseColor, Anchor::end);
    for (std::size_t row = 0; row < rows_; ++row)
      waveform(row);
    for (std::size_t i = 0; i < result_.hits.size(); ++i)
      hit(result_.hits[i], result_.fates[i]);
    return std::move(svg_).finished();
  }

 private:
  static double middleOf(std::size_t row) {
    return waveTop + static_cast<double>(row) * (rowHeight + rowGap) + rowHeight / 2;
  }
  /// With the gain that the takes get.
  double decibels(float amplitude) const {
    return 20 * std::log10(std::max(static_cast<double>(amplitude), 1e-6)) + options_.gainDb;
  }
  std::string gainText() const {
    return options_.gainDb == 0 ? "" : SvgDocument::formatted(", %+.1f dB gain", options_.gainDb);
  }

  /// The highest level in a part of the recording.
  double levelWithin(double beginSeconds, double endSeconds) const {
    const auto place = [this](double seconds) {
      return std::min(static_cast<std::size_t>(seconds / detectionLevelSeconds), levels_.size());
    };
    double highest = silenceDb;
    for (std::size_t i = place(beginSeconds); i < place(endSeconds); ++i)
      highest = std::max(highest, static_cast<double>(levels_[i]) + options_.gainDb);
    return highest;
  }

  /// How far from the middle of its row a level is drawn.
  double reach(double db) const {
    return std::clamp((db - lowDb_) / (highDb_ - lowDb_), 0.0, 1.0) * rowHeight / 2;
  }

  void legend() {
    double x = margin;
    for (const FateStyle& style : styles) {
      const auto count = std::count(result_.fates.begin(), result_.fates.end(), style.fate);
      svg_.circle(x, 24, 6, style.color);
      svg_.label(x + 12, 29, SvgDocument::formatted("%s %td", style.label, count),
                 count > 0 ? "#1b1b20" : "#a0a0aa");
      x += plotWidth / static_cast<double>(styles.size());
    }
  }

  /// The levels of one row, a stroke a pixel, with its seconds below.
  void waveform(std::size_t row) {
    const double middle = middleOf(row);
    svg_.rectangle({margin, middle - rowHeight / 2, plotWidth, rowHeight}, "#f4f4f8");
    const double begin = static_cast<double>(row) * secondsARow_;
    const double secondsAPixel = secondsARow_ / plotWidth;
    std::string path;
    for (std::size_t pixel = 0; pixel < static_cast<std::size_t>(plotWidth); ++pixel) {
      const double from = begin + static_cast<double>(pixel) * secondsAPixel;
      const double half = reach(levelWithin(from, from + secondsAPixel));
      if (half < 0.5) continue;
      path += SvgDocument::formatted("M%.1f %.1fV%.1f", margin + static_cast<double>(pixel) + 0.5,
                                     middle - half, middle + half);
    }
    if (!path.empty()) svg_.stroke(path, "#c3c3ce", 1);
    const double noise = reach(decibels(result_.noiseFloor));
    svg_.stroke(SvgDocument::formatted("M%.1f %.1fh%.1fM%.1f %.1fh%.1f", margin, middle - noise,
                                       plotWidth, margin, middle + noise, plotWidth),
                noiseColor, 1, "5 5");
    for (int i = 0; i <= static_cast<int>(secondsARow_); ++i) {
      const auto second = static_cast<double>(i);
      svg_.label(margin + second / secondsARow_ * plotWidth, middle + rowHeight / 2 + 16,
                 SvgDocument::formatted("%.0f s", begin + second), quietText, Anchor::middle);
    }
  }

  void hit(const RecordedHit& hit, Fate fate) {
    const double seconds = static_cast<double>(hit.onset) / rate_;
    const auto row = std::min(static_cast<std::size_t>(seconds / secondsARow_), rows_ - 1);
    const double x =
        margin + (seconds - static_cast<double>(row) * secondsARow_) / secondsARow_ * plotWidth;
    const double half = std::max(reach(levelWithin(seconds, seconds + strokeSeconds)), 8.0);
    const bool isPress = fate == Fate::press || fate == Fate::bigPress;
    const double top = middleOf(row) - (fate == Fate::release ? 0 : half);
    const double bottom = middleOf(row) + (isPress ? 0 : half);
    const char* color = styleOf(fate).color;
    svg_.stroke(SvgDocument::formatted("M%.1f %.1fV%.1f", x, top, bottom), color, 2);
    if (fate != Fate::release) svg_.circle(x, top, 3.5, color);
    if (!isPress) svg_.circle(x, bottom, 3.5, color);
  }

  void ranking(Fate fate, KeyGroup group, const char* title, double x, int64_t variants) {
    std::vector<float> energies;
    for (std::size_t i = 0; i < result_.hits.size(); ++i) {
      if (result_.fates[i] == fate) energies.push_back(result_.hits[i].energy);
    }
    std::sort(energies.begin(), energies.end());
    svg_.label(x, rankTop - 14, SvgDocument::formatted("%zu %s", energies.size(), title),
               styleOf(fate).color);
    const double width = plotWidth / 2 - 40;
    svg_.rectangle({x, rankTop, width, rankHeight}, "#f4f4f8");
    if (energies.empty()) return;
    const auto bands = tierBands(energies.size(), variants);
    for (const auto& band : bands) {
      svg_.rectangle({x + band.low * width, rankTop, (band.high - band.low) * width, rankHeight},
                     tierStyles[index(band.tier)].band);
      svg_.label(x + (band.low + band.high) / 2 * width, rankTop + rankHeight + 18,
                 std::string(name(band.tier)), tierStyles[index(band.tier)].bar, Anchor::middle);
      svg_.label(x + (band.low + band.high) / 2 * width, rankTop + rankHeight + 34,
                 SvgDocument::formatted("%zu takes", takesIn(group, band.tier)), quietText,
                 Anchor::middle);
    }
    energyBars(energies, bands, x, width);
  }

  std::size_t takesIn(KeyGroup group, Tier tier) const {
    std::size_t count = 0;
    for (const auto& [each, tiers] : result_.down) {
      const auto takes = tiers.find(tier);
      if (isLarge(each) == isLarge(group) && takes != tiers.end()) count += takes->second.size();
    }
    return count;
  }

  /// The quietest bar still shows, so the scale starts a little below it.
  void energyBars(const std::vector<float>& energies, const std::vector<TierBand>& bands, double x,
                  double width) {
    const double high = decibels(energies.back());
    const double low = std::min(decibels(energies.front()), high - 6) - 3;
    const auto count = static_cast<double>(energies.size());
    for (std::size_t i = 0; i < energies.size(); ++i) {
      const char* color = unusedBar;
      for (const auto& band : bands) {
        const auto place = static_cast<double>(i);
        if (place >= std::floor(band.low * count) && place < band.high * count) {
          color = tierStyles[index(band.tier)].bar;
        }
      }
      const double height = (decibels(energies[i]) - low) / (high - low) * rankHeight;
      const double step = width / count;
      svg_.rectangle({x + static_cast<double>(i) * step, rankTop + rankHeight - height,
                      std::max(step * 0.8, 0.3), height},
                     color);
    }
    for (const double db : {high, (high + low) / 2, low}) {
      const double y = rankTop + rankHeight * (high - db) / (high - low);
      svg_.stroke(SvgDocument::formatted("M%.1f %.1fh%.1f", x, y, width), "#ffffff", 0.6);
      svg_.label(x - 8, y + 5, SvgDocument::formatted("%.0f dB", db), quietText, Anchor::end);
    }
  }

  const Result& result_;
  double rate_;
  const SlicerOptions& options_;
  const std::vector<float> levels_;  // as `HitDetector` has them
  double secondsARow_;
  std::size_t rows_;
  double highDb_ = 0;  // of the waveform's scale
  double lowDb_ = 0;
  SvgDocument svg_;
};

}  // namespace

std::string slicePlot(const SlicedRecording& result, std::span<const float> left,
                      std::span<const float> right, double rate, const SlicerOptions& options) {
  return Drawing(result, left, right, rate, options).document();
}

}  // namespace tobrin
