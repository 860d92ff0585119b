#include "SlicePlot.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdarg>
#include <cstdio>

#include "Building/TierAssignment.h"

namespace tobrin {
namespace {

using Fate = RecordingSlicer::Fate;
using Result = RecordingSlicer::Result;

struct FateStyle {
  Fate fate;
  const char* label;
  const char* color;
};

constexpr std::array<FateStyle, 7> styles = {{{Fate::press, "press", "#2f86cf"},
                                              {Fate::bigPress, "big press", "#7a4fd0"},
                                              {Fate::release, "release", "#2a9a63"},
                                              {Fate::clipped, "clipped", "#d8343b"},
                                              {Fate::overlapping, "dropped: overlaps", "#d98512"},
                                              {Fate::faint, "dropped: too faint", "#8a8a94"},
                                              {Fate::repeated, "dropped: repeated", "#8a8a94"}}};
constexpr std::array<const char*, tierCount> tierColors = {"#cfe6f7", "#d3eedd", "#f9e6c4",
                                                           "#f8d2d3"};

constexpr double margin = 56;
constexpr double waveTop = 64;
constexpr double waveHeight = 260;
constexpr double rankTop = waveTop + waveHeight + 84;
constexpr double rankHeight = 220;
constexpr double documentHeight = rankTop + rankHeight + 48;
constexpr double pixelsPerSecond = 14;

const FateStyle& styleOf(Fate fate) {
  return styles[static_cast<std::size_t>(fate)];
}

double decibels(float amplitude) {
  return 20 * std::log10(std::max(static_cast<double>(amplitude), 1e-6));
}

/// Builds the document piece by piece.
class Drawing {
 public:
  Drawing(const Result& result, std::span<const float> left, std::span<const float> right,
          double rate, const RecordingSlicer::Options& options)
      : result_(result), left_(left), right_(right), options_(options) {
    const double seconds = static_cast<double>(left.size()) / rate;
    plotWidth_ = std::clamp(seconds * pixelsPerSecond, 900.0, 12000.0);
    framesPerPixel_ = std::max(static_cast<double>(left.size()) / plotWidth_, 1e-9);
    rate_ = rate;
  }

  std::string document() {
    const double width = plotWidth_ + 2 * margin;
    add("<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 %.0f %.0f\" width=\"%.0f\" "
        "height=\"%.0f\" font-family=\"sans-serif\" font-size=\"13\" fill=\"#1b1b20\">\n"
        "<rect width=\"100%%\" height=\"100%%\" fill=\"#ffffff\"/>\n",
        width, documentHeight, width, documentHeight);
    legend();
    waveform();
    timeAxis();
    hits();
    noiseFloor();
    ranking();
    svg_ += "</svg>\n";
    return std::move(svg_);
  }

 private:
  __attribute__((format(printf, 2, 3))) void add(const char* format, ...) {
    char text[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    svg_ += text;
  }

  double xOf(std::size_t frame) const {
    return margin + static_cast<double>(frame) / framesPerPixel_;
  }
  static double yOf(double amplitude) {
    return waveTop + waveHeight / 2 * (1 - std::clamp(amplitude, -1.0, 1.0));
  }

  void legend() {
    double x = margin;
    for (const FateStyle& style : styles) {
      const auto count = std::count(result_.fates.begin(), result_.fates.end(), style.fate);
      add("<circle cx=\"%.1f\" cy=\"24\" r=\"5\" fill=\"%s\"/>"
          "<text x=\"%.1f\" y=\"28\">%s %td</text>\n",
          x, style.color, x + 10, style.label, count);
      x += 150;
    }
  }

  /// One vertical stroke a pixel, from the smallest to the largest sample.
  void waveform() {
    add("<rect x=\"%.1f\" y=\"%.1f\" width=\"%.1f\" height=\"%.1f\" fill=\"#f6f6f9\"/>\n", margin,
        waveTop, plotWidth_, waveHeight);
    svg_ += "<path stroke=\"#9a9aa6\" fill=\"none\" d=\"";
    for (std::size_t pixel = 0; pixel < static_cast<std::size_t>(plotWidth_); ++pixel) {
      const auto begin = static_cast<std::size_t>(static_cast<double>(pixel) * framesPerPixel_);
      const auto end = std::min(
          static_cast<std::size_t>(static_cast<double>(pixel + 1) * framesPerPixel_), left_.size());
      float low = 0;
      float high = 0;
      for (std::size_t i = begin; i < end; ++i) {
        const float mono = (left_[i] + right_[i]) * 0.5f;
        low = std::min(low, mono);
        high = std::max(high, mono);
      }
      if (begin < end) {
        add("M%.1f %.1fV%.1f", margin + static_cast<double>(pixel), yOf(static_cast<double>(high)),
            yOf(static_cast<double>(low)) + 0.5);
      }
    }
    svg_ += "\"/>\n";
  }

  void timeAxis() {
    const double seconds = static_cast<double>(left_.size()) / rate_;
    const double step = seconds > 300 ? 30 : seconds > 60 ? 10 : seconds > 10 ? 5 : 1;
    for (double at = 0; at <= seconds; at += step) {
      add("<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"middle\" fill=\"#5f5f6b\">%.0f s</text>\n",
          margin + at * rate_ / framesPerPixel_, waveTop + waveHeight + 20, at);
    }
  }

  void hits() {
    for (std::size_t i = 0; i < result_.hits.size(); ++i) {
      const auto& hit = result_.hits[i];
      const double x = xOf(hit.onset);
      const double reach = std::max(static_cast<double>(hit.peak), 0.04);
      const char* color = styleOf(result_.fates[i]).color;
      add("<path stroke=\"%s\" stroke-width=\"1.5\" d=\"M%.2f %.1fV%.1f\"/>"
          "<circle cx=\"%.2f\" cy=\"%.1f\" r=\"2.5\" fill=\"%s\"/>\n",
          color, x, yOf(reach), yOf(-reach), x, yOf(reach), color);
    }
  }

  void noiseFloor() {
    const double floor = static_cast<double>(result_.noiseFloor);
    add("<path stroke=\"#d8343b\" stroke-dasharray=\"4 4\" d=\"M%.1f %.2fH%.1fM%.1f "
        "%.2fH%.1f\"/>\n",
        margin, yOf(floor), margin + plotWidth_, margin, yOf(-floor), margin + plotWidth_);
    add("<text x=\"%.1f\" y=\"%.1f\" fill=\"#d8343b\">noise floor %.1f dB (above 700 Hz)</text>\n",
        margin, waveTop - 10, decibels(result_.noiseFloor));
  }

  void ranking() {
    rankingOf(Fate::press, "ordinary keys by energy", margin, options_.alphaVariants);
    rankingOf(Fate::bigPress, "wide keys by energy", margin + plotWidth_ / 2 + 20,
              options_.bigVariants);
  }

  void rankingOf(Fate fate, const char* title, double x, int64_t variants) {
    std::vector<float> energies;
    for (std::size_t i = 0; i < result_.hits.size(); ++i) {
      if (result_.fates[i] == fate) energies.push_back(result_.hits[i].energy);
    }
    std::sort(energies.begin(), energies.end());
    const double width = plotWidth_ / 2 - 20;
    add("<text x=\"%.1f\" y=\"%.1f\" font-weight=\"bold\">%zu %s</text>\n", x, rankTop - 12,
        energies.size(), title);
    if (energies.empty()) return;
    for (const auto& band : TierAssignment::bands(energies.size(), variants)) {
      const std::string tierName(name(band.tier));
      add("<rect x=\"%.1f\" y=\"%.1f\" width=\"%.1f\" height=\"%.1f\" fill=\"%s\"/>"
          "<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"middle\">%s</text>\n",
          x + band.low * width, rankTop, (band.high - band.low) * width, rankHeight,
          tierColors[index(band.tier)], x + (band.low + band.high) / 2 * width,
          rankTop + rankHeight + 18, tierName.c_str());
    }
    energyBars(energies, x, width, styleOf(fate).color);
  }

  void energyBars(const std::vector<float>& energies, double x, double width, const char* color) {
    const double high = decibels(energies.back());
    const double low = std::min(decibels(energies.front()), high - 6) - 3;
    const double step = width / static_cast<double>(energies.size());
    for (std::size_t i = 0; i < energies.size(); ++i) {
      const double height = (decibels(energies[i]) - low) / (high - low) * rankHeight;
      add("<rect x=\"%.2f\" y=\"%.1f\" width=\"%.2f\" height=\"%.1f\" fill=\"%s\"/>\n",
          x + static_cast<double>(i) * step, rankTop + rankHeight - height,
          std::max(step * 0.8, 0.3), height, color);
    }
    add("<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"end\" fill=\"#5f5f6b\">%.0f dB</text>"
        "<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"end\" fill=\"#5f5f6b\">%.0f dB</text>\n",
        x - 6, rankTop + 12, high, x - 6, rankTop + rankHeight, low);
  }

  const Result& result_;
  std::span<const float> left_;
  std::span<const float> right_;
  const RecordingSlicer::Options& options_;
  double rate_ = 48000;
  double plotWidth_ = 0;
  double framesPerPixel_ = 1;
  std::string svg_;
};

}  // namespace

std::string slicePlot(const RecordingSlicer::Result& result, std::span<const float> left,
                      std::span<const float> right, double rate,
                      const RecordingSlicer::Options& options) {
  return Drawing(result, left, right, rate, options).document();
}

}  // namespace tobrin
