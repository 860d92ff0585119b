/// Writes the few shapes of a drawing as SVG text. Positions and sizes in pixels. Thread: any.
#pragma once

#include <cassert>
#include <cstdio>
#include <string>
#include <string_view>
#include <utility>

namespace tobrin {

class SvgDocument {
 public:
  enum class Anchor { start, middle, end };

  struct Box {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
  };

  SvgDocument(double width, double height) {
    // Some programs outline every shape unless the file says otherwise.
    add("<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 %.0f %.0f\" width=\"%.0f\" "
        "height=\"%.0f\" font-family=\"sans-serif\" font-size=\"13\" stroke=\"none\">\n",
        width, height, width, height);
    rectangle({0, 0, width, height}, "#ffffff");
  }

  void rectangle(const Box& box, const char* color) {
    add("<rect x=\"%.2f\" y=\"%.1f\" width=\"%.2f\" height=\"%.1f\" fill=\"%s\"/>\n", box.x, box.y,
        box.width, box.height, color);
  }

  /// `path` in SVG's own terms.
  void stroke(const std::string& path, const char* color, double width, const char* dashes = "") {
    add("<path fill=\"none\" stroke=\"%s\" stroke-width=\"%.1f\"", color, width);
    if (*dashes != 0) add(" stroke-dasharray=\"%s\"", dashes);
    text_ += " d=\"" + path + "\"/>\n";
  }

  void circle(double x, double y, double radius, const char* color) {
    add("<circle cx=\"%.1f\" cy=\"%.1f\" r=\"%.1f\" fill=\"%s\"/>\n", x, y, radius, color);
  }

  /// `text` holds nothing that SVG would have to escape.
  void label(double x, double y, std::string_view text, const char* color = "#1b1b20",
             Anchor anchor = Anchor::start) {
    assert(text.find_first_of("<&") == std::string_view::npos);
    constexpr const char* anchors[] = {"start", "middle", "end"};
    add("<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"%s\" fill=\"%s\">", x, y,
        anchors[static_cast<int>(anchor)], color);
    text_ += text;
    text_ += "</text>\n";
  }

  std::string finished() && {
    text_ += "</svg>\n";
    return std::move(text_);
  }

  /// As `printf`, for short pieces of text.
  template <typename... Values>
  static std::string formatted(const char* format, Values... values) {
    char piece[512];
    (void)std::snprintf(piece, sizeof piece, format, values...);
    return piece;
  }

 private:
  template <typename... Values>
  void add(const char* format, Values... values) {
    text_ += formatted(format, values...);
  }

  std::string text_;
};

}  // namespace tobrin
