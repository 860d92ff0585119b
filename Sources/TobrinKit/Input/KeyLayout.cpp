#include "Input/KeyLayout.h"

#include <array>
#include <cstddef>
#include <initializer_list>

#include "Base/SplitMix64.h"

namespace tobrin {
namespace {

constexpr double keyboardWidth = 15;  // key widths
constexpr std::size_t codeCount = 128;
constexpr double noColumn = -1;

using Columns = std::array<double, codeCount>;

/// Keys at even distances, from the left.
constexpr void placeRow(Columns& columns, double first, double step,
                        std::initializer_list<std::size_t> codes) {
  int i = 0;
  for (const std::size_t code : codes)
    columns[code] = first + step * i++;
}

/// What other keyboards have besides, in and around the main block.
constexpr void placeOtherLayouts(Columns& columns) {
  columns[10] = 1.75;   // ISO: between left Shift and Z
  columns[93] = 13.25;  // JIS: Yen, before Delete
  columns[94] = 12.75;  // JIS: underscore, before right Shift
  columns[102] = 5.0;   // JIS: left of Space
  columns[104] = 10.0;  // JIS: right of Space
  columns[110] = 13.4;  // context menu
  columns[62] = 14.4;   // right Control
}

/// What stands right of the main block, squeezed into what is left of its width: the sound of a key
/// beyond it would leave the stage.
constexpr void placeRightOfMainBlock(Columns& columns) {
  placeRow(columns, 14.6, 0.1, {105, 107, 113});  // F13 to F15
  placeRow(columns, 14.6, 0.1, {114, 115, 116});  // Insert, Home, Page Up
  placeRow(columns, 14.7, 0.1, {119, 121});       // End, Page Down, beside forward Delete

  constexpr double keypad = 14.85;
  constexpr double step = 0.05;
  placeRow(columns, keypad, step, {106, 64, 79, 80});  // F16 to F19
  placeRow(columns, keypad, step, {71, 75, 67, 78});   // Num Lock / * -
  placeRow(columns, keypad, step, {89, 91, 92, 69});   // 7 8 9 +
  placeRow(columns, keypad, step, {86, 87, 88, 95});   // 4 5 6 and a comma
  placeRow(columns, keypad, step, {83, 84, 85, 76});   // 1 2 3 Enter
  placeRow(columns, keypad, 2 * step, {82, 65});       // 0, two keys wide, and the point
  columns[81] = columns[75];                           // = where keypads have one
  columns[90] = columns[80];                           // F20
}

constexpr Columns placeKeys() {
  Columns columns{};
  columns.fill(noColumn);
  placeOtherLayouts(columns);
  placeRightOfMainBlock(columns);

  // A laptop keyboard in the ANSI layout.
  columns[53] = 0.5;            // Escape
  placeRow(columns, 1.6, 1.08,  // F1 to F12
           {122, 120, 99, 118, 96, 97, 98, 100, 101, 109, 103, 111});
  placeRow(columns, 0.5, 1.0,  // ` 1 to 0 - =
           {50, 18, 19, 20, 21, 23, 22, 26, 28, 25, 29, 27, 24});
  columns[51] = 14.0;          // Delete
  columns[48] = 0.75;          // Tab
  placeRow(columns, 2.0, 1.0,  // Q to P [ ]
           {12, 13, 14, 15, 17, 16, 32, 34, 31, 35, 33, 30});
  columns[42] = 14.25;          // backslash
  columns[57] = 0.9;            // Caps Lock
  placeRow(columns, 2.25, 1.0,  // A to L ; '
           {0, 1, 2, 3, 5, 4, 38, 40, 37, 41, 39});
  columns[36] = 14.0;           // Return
  columns[56] = 1.2;            // left Shift
  placeRow(columns, 2.75, 1.0,  // Z to M , . /
           {6, 7, 8, 9, 11, 45, 46, 43, 47, 44});
  columns[60] = 13.9;   // right Shift
  columns[63] = 0.5;    // Fn
  columns[59] = 1.5;    // Control
  columns[58] = 2.5;    // Option
  columns[55] = 3.75;   // Command
  columns[49] = 7.5;    // Space
  columns[54] = 11.25;  // right Command
  columns[61] = 12.4;   // right Option
  columns[123] = 13.1;  // left arrow
  columns[126] = 14.0;  // up arrow
  columns[125] = 14.0;  // down arrow
  columns[124] = 14.9;  // right arrow
  columns[117] = 14.6;  // forward Delete
  return columns;
}

constexpr Columns columns = placeKeys();

}  // namespace

KeyGroup KeyLayout::group(uint16_t code) {
  constexpr uint16_t tab = 48;
  constexpr uint16_t firstModifier = 54;
  constexpr uint16_t lastModifier = 63;
  switch (code) {
    case 49:
      return KeyGroup::space;
    case 36:  // Return
    case 76:  // Enter on the keypad
      return KeyGroup::enter;
    case 51:   // Delete
    case 117:  // forward Delete
      return KeyGroup::backspace;
    default:
      break;
  }
  const bool modifier = code == tab || (code >= firstModifier && code <= lastModifier);
  return modifier ? KeyGroup::modifier : KeyGroup::alpha;
}

std::optional<double> KeyLayout::column(uint16_t code) {
  if (code >= columns.size() || columns[code] == noColumn) return std::nullopt;
  return columns[code];
}

float KeyLayout::pan(uint16_t code) {
  const std::optional<double> place = column(code);
  if (!place) return 0;
  return static_cast<float>((*place / keyboardWidth - 0.5) * 2);
}

uint64_t KeyLayout::identity(uint16_t code) {
  return SplitMix64(code).next();
}

}  // namespace tobrin
