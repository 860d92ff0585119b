#include "Evdev/KeyCodes.h"

#include <linux/input-event-codes.h>

#include <array>

#include "Base/Key.h"
#include "Base/MouseButton.h"

namespace tobrin {
namespace {

struct Row {
  uint16_t kernelCode;
  Key key;
};

/// By place on the keyboard. Where two keys share a virtual code, the usual one stands first.
constexpr Row rows[] = {
    {KEY_ESC, Key::escape},
    {KEY_F1, Key::f1},
    {KEY_F2, Key::f2},
    {KEY_F3, Key::f3},
    {KEY_F4, Key::f4},
    {KEY_F5, Key::f5},
    {KEY_F6, Key::f6},
    {KEY_F7, Key::f7},
    {KEY_F8, Key::f8},
    {KEY_F9, Key::f9},
    {KEY_F10, Key::f10},
    {KEY_F11, Key::f11},
    {KEY_F12, Key::f12},
    {KEY_F13, Key::f13},
    {KEY_F14, Key::f14},
    {KEY_F15, Key::f15},
    {KEY_F16, Key::f16},
    {KEY_F17, Key::f17},
    {KEY_F18, Key::f18},
    {KEY_F19, Key::f19},
    {KEY_F20, Key::f20},
    // Print Screen, Scroll Lock and Pause stand where other keyboards have F13 to F15.
    {KEY_SYSRQ, Key::f13},
    {KEY_SCROLLLOCK, Key::f14},
    {KEY_PAUSE, Key::f15},

    {KEY_GRAVE, Key::grave},
    {KEY_ZENKAKUHANKAKU, Key::grave},  // JIS: in the place of the grave accent
    {KEY_1, Key::digit1},
    {KEY_2, Key::digit2},
    {KEY_3, Key::digit3},
    {KEY_4, Key::digit4},
    {KEY_5, Key::digit5},
    {KEY_6, Key::digit6},
    {KEY_7, Key::digit7},
    {KEY_8, Key::digit8},
    {KEY_9, Key::digit9},
    {KEY_0, Key::digit0},
    {KEY_MINUS, Key::minus},
    {KEY_EQUAL, Key::equal},
    {KEY_YEN, Key::jisYen},  // JIS
    {KEY_BACKSPACE, Key::backspace},

    {KEY_TAB, Key::tab},
    {KEY_Q, Key::q},
    {KEY_W, Key::w},
    {KEY_E, Key::e},
    {KEY_R, Key::r},
    {KEY_T, Key::t},
    {KEY_Y, Key::y},
    {KEY_U, Key::u},
    {KEY_I, Key::i},
    {KEY_O, Key::o},
    {KEY_P, Key::p},
    {KEY_LEFTBRACE, Key::leftBracket},
    {KEY_RIGHTBRACE, Key::rightBracket},
    {KEY_BACKSLASH, Key::backslash},

    {KEY_CAPSLOCK, Key::capsLock},
    {KEY_A, Key::a},
    {KEY_S, Key::s},
    {KEY_D, Key::d},
    {KEY_F, Key::f},
    {KEY_G, Key::g},
    {KEY_H, Key::h},
    {KEY_J, Key::j},
    {KEY_K, Key::k},
    {KEY_L, Key::l},
    {KEY_SEMICOLON, Key::semicolon},
    {KEY_APOSTROPHE, Key::quote},
    {KEY_ENTER, Key::enter},

    {KEY_LEFTSHIFT, Key::leftShift},
    {KEY_102ND, Key::isoSection},  // ISO: between left Shift and Z
    {KEY_Z, Key::z},
    {KEY_X, Key::x},
    {KEY_C, Key::c},
    {KEY_V, Key::v},
    {KEY_B, Key::b},
    {KEY_N, Key::n},
    {KEY_M, Key::m},
    {KEY_COMMA, Key::comma},
    {KEY_DOT, Key::period},
    {KEY_SLASH, Key::slash},
    {KEY_RO, Key::jisUnderscore},  // JIS, Brazilian: before right Shift
    {KEY_RIGHTSHIFT, Key::rightShift},

    {KEY_LEFTCTRL, Key::leftControl},
    {KEY_FN, Key::function},
    {KEY_LEFTMETA, Key::leftCommand},
    {KEY_LEFTALT, Key::leftOption},
    {KEY_SPACE, Key::space},
    {KEY_RIGHTALT, Key::rightOption},
    {KEY_RIGHTMETA, Key::rightCommand},
    {KEY_COMPOSE, Key::menu},  // the context menu key
    {KEY_RIGHTCTRL, Key::rightControl},
    // JIS and Korean: the keys next to the space bar, left and right.
    {KEY_MUHENKAN, Key::jisLeftOfSpace},
    {KEY_HANJA, Key::jisLeftOfSpace},
    {KEY_KATAKANAHIRAGANA, Key::jisRightOfSpace},
    {KEY_HENKAN, Key::jisRightOfSpace},
    {KEY_KATAKANA, Key::jisRightOfSpace},
    {KEY_HIRAGANA, Key::jisRightOfSpace},
    {KEY_HANGEUL, Key::jisRightOfSpace},

    {KEY_INSERT, Key::insert},
    {KEY_HELP, Key::insert},
    {KEY_DELETE, Key::forwardDelete},
    {KEY_HOME, Key::home},
    {KEY_END, Key::end},
    {KEY_PAGEUP, Key::pageUp},
    {KEY_PAGEDOWN, Key::pageDown},
    {KEY_LEFT, Key::leftArrow},
    {KEY_RIGHT, Key::rightArrow},
    {KEY_DOWN, Key::downArrow},
    {KEY_UP, Key::upArrow},

    {KEY_NUMLOCK, Key::numLock},
    {KEY_KPEQUAL, Key::keypadEqual},
    {KEY_KPSLASH, Key::keypadDivide},
    {KEY_KPASTERISK, Key::keypadMultiply},
    {KEY_KPMINUS, Key::keypadMinus},
    {KEY_KPPLUS, Key::keypadPlus},
    {KEY_KPENTER, Key::keypadEnter},
    {KEY_KPDOT, Key::keypadPoint},
    {KEY_KPJPCOMMA, Key::keypadComma},
    {KEY_KPCOMMA, Key::keypadComma},
    {KEY_KP0, Key::keypad0},
    {KEY_KP1, Key::keypad1},
    {KEY_KP2, Key::keypad2},
    {KEY_KP3, Key::keypad3},
    {KEY_KP4, Key::keypad4},
    {KEY_KP5, Key::keypad5},
    {KEY_KP6, Key::keypad6},
    {KEY_KP7, Key::keypad7},
    {KEY_KP8, Key::keypad8},
    {KEY_KP9, Key::keypad9},
};

constexpr uint16_t none = 0xFFFF;
using Table = std::array<uint16_t, KEY_FN + 1>;

constexpr Table virtualCodes = [] {
  Table table{};
  for (auto& entry : table)
    entry = none;
  for (const Row& row : rows)
    table.at(row.kernelCode) = codeOf(row.key);
  return table;
}();

}  // namespace

std::optional<uint16_t> virtualCodeOf(uint32_t kernelCode) {
  if (kernelCode >= virtualCodes.size() || virtualCodes[kernelCode] == none) return std::nullopt;
  return virtualCodes[kernelCode];
}

std::optional<uint16_t> mouseCodeOf(uint32_t kernelCode) {
  switch (kernelCode) {
    case BTN_LEFT:
      return codeOf(MouseButton::left);
    case BTN_RIGHT:
      return codeOf(MouseButton::right);
    case BTN_MIDDLE:
      return codeOf(MouseButton::middle);
    case BTN_SIDE:
    case BTN_BACK:
      return codeOf(MouseButton::back);
    case BTN_EXTRA:
    case BTN_FORWARD:
      return codeOf(MouseButton::forward);
    case BTN_TASK:
      return codeOf(MouseButton::other);
    default:
      return std::nullopt;
  }
}

std::vector<uint16_t> kernelCodesOf(uint32_t virtualCode) {
  std::vector<uint16_t> result;
  for (const Row& row : rows) {
    if (codeOf(row.key) == virtualCode) result.push_back(row.kernelCode);
  }
  return result;
}

}  // namespace tobrin
