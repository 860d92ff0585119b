#include "Input/KeyLayout.h"

#include <array>
#include <cstddef>
#include <initializer_list>

#include "Base/Key.h"
#include "Base/MouseButton.h"
#include "Base/SplitMix64.h"

namespace tobrin {
namespace {

constexpr double keyboardWidth = 15;  // key widths
constexpr std::size_t codeCount = 128;
constexpr double noColumn = -1;

using Columns = std::array<double, codeCount>;

constexpr double& at(Columns& columns, Key key) {
  return columns[codeOf(key)];
}

/// Keys at even distances, from the left.
constexpr void placeRow(Columns& columns, double first, double step,
                        std::initializer_list<Key> keys) {
  int i = 0;
  for (const Key key : keys)
    at(columns, key) = first + step * i++;
}

/// What other keyboards have in addition, in and around the main block.
constexpr void placeOtherLayouts(Columns& columns) {
  at(columns, Key::isoSection) = 1.75;      // between left Shift and Z
  at(columns, Key::jisYen) = 13.25;         // before Backspace
  at(columns, Key::jisUnderscore) = 12.75;  // before right Shift
  at(columns, Key::jisLeftOfSpace) = 5.0;
  at(columns, Key::jisRightOfSpace) = 10.0;
  at(columns, Key::menu) = 13.4;
  at(columns, Key::rightControl) = 14.4;
}

/// What stands right of the main block, squeezed into what is left of its width: a key beyond it
/// would be panned further than fully to the right.
constexpr void placeRightOfMainBlock(Columns& columns) {
  placeRow(columns, 14.6, 0.1, {Key::f13, Key::f14, Key::f15});
  placeRow(columns, 14.6, 0.1, {Key::insert, Key::home, Key::pageUp});
  at(columns, Key::forwardDelete) = 14.6;
  placeRow(columns, 14.7, 0.1, {Key::end, Key::pageDown});  // beside forward Delete

  constexpr double keypad = 14.85;
  constexpr double step = 0.05;
  placeRow(columns, keypad, step, {Key::f16, Key::f17, Key::f18, Key::f19});
  placeRow(columns, keypad, step,
           {Key::numLock, Key::keypadDivide, Key::keypadMultiply, Key::keypadMinus});
  placeRow(columns, keypad, step, {Key::keypad7, Key::keypad8, Key::keypad9, Key::keypadPlus});
  placeRow(columns, keypad, step, {Key::keypad4, Key::keypad5, Key::keypad6, Key::keypadComma});
  placeRow(columns, keypad, step, {Key::keypad1, Key::keypad2, Key::keypad3, Key::keypadEnter});
  placeRow(columns, keypad, 2 * step, {Key::keypad0, Key::keypadPoint});  // 0 is two keys wide
  at(columns, Key::keypadEqual) = at(columns, Key::keypadDivide);
  at(columns, Key::f20) = at(columns, Key::f19);
}

constexpr void placeMainBlock(Columns& columns) {
  at(columns, Key::escape) = 0.5;
  placeRow(columns, 1.6, 1.08,
           {Key::f1, Key::f2, Key::f3, Key::f4, Key::f5, Key::f6, Key::f7, Key::f8, Key::f9,
            Key::f10, Key::f11, Key::f12});
  placeRow(
      columns, 0.5, 1.0,
      {Key::grave, Key::digit1, Key::digit2, Key::digit3, Key::digit4, Key::digit5, Key::digit6,
       Key::digit7, Key::digit8, Key::digit9, Key::digit0, Key::minus, Key::equal});
  at(columns, Key::backspace) = 14.0;
  at(columns, Key::tab) = 0.75;
  placeRow(columns, 2.0, 1.0,
           {Key::q, Key::w, Key::e, Key::r, Key::t, Key::y, Key::u, Key::i, Key::o, Key::p,
            Key::leftBracket, Key::rightBracket});
  at(columns, Key::backslash) = 14.25;
  at(columns, Key::capsLock) = 0.9;
  placeRow(columns, 2.25, 1.0,
           {Key::a, Key::s, Key::d, Key::f, Key::g, Key::h, Key::j, Key::k, Key::l, Key::semicolon,
            Key::quote});
  at(columns, Key::enter) = 14.0;
  at(columns, Key::leftShift) = 1.2;
  placeRow(columns, 2.75, 1.0,
           {Key::z, Key::x, Key::c, Key::v, Key::b, Key::n, Key::m, Key::comma, Key::period,
            Key::slash});
  at(columns, Key::rightShift) = 13.9;
}

/// Modifiers, Space and arrows.
constexpr void placeBottomRow(Columns& columns) {
  at(columns, Key::function) = 0.5;
  at(columns, Key::leftControl) = 1.5;
  at(columns, Key::leftOption) = 2.5;
  at(columns, Key::leftCommand) = 3.75;
  at(columns, Key::space) = 7.5;
  at(columns, Key::rightCommand) = 11.25;
  at(columns, Key::rightOption) = 12.4;
  at(columns, Key::leftArrow) = 13.1;
  at(columns, Key::upArrow) = 14.0;
  at(columns, Key::downArrow) = 14.0;
  at(columns, Key::rightArrow) = 14.9;
}

/// A laptop keyboard in the ANSI layout, and around it what others have.
constexpr Columns placeKeys() {
  Columns columns{};
  columns.fill(noColumn);
  placeMainBlock(columns);
  placeBottomRow(columns);
  placeOtherLayouts(columns);
  placeRightOfMainBlock(columns);
  return columns;
}

constexpr Columns columns = placeKeys();

}  // namespace

KeyGroup keyGroupOf(uint16_t code) {
  if (isMouse(code)) return KeyGroup::mouse;
  switch (Key{code}) {
    case Key::space:
      return KeyGroup::space;
    case Key::enter:
    case Key::keypadEnter:
      return KeyGroup::enter;
    case Key::backspace:
    case Key::forwardDelete:
      return KeyGroup::backspace;
    case Key::tab:
    case Key::rightCommand:
    case Key::leftCommand:
    case Key::leftShift:
    case Key::capsLock:
    case Key::leftOption:
    case Key::leftControl:
    case Key::rightShift:
    case Key::rightOption:
    case Key::rightControl:
    case Key::function:
      return KeyGroup::modifier;
    default:
      return KeyGroup::alpha;
  }
}

std::optional<double> keyColumn(uint16_t code) {
  if (code >= columns.size() || columns[code] == noColumn) return std::nullopt;
  return columns[code];
}

float keyPan(uint16_t code) {
  const std::optional<double> place = keyColumn(code);
  if (!place) return 0;
  return static_cast<float>((*place / keyboardWidth - 0.5) * 2);
}

uint64_t keyIdentity(uint16_t code) {
  return SplitMix64(code).next();
}

}  // namespace tobrin
