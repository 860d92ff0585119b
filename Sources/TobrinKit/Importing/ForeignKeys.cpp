#include "Importing/ForeignKeys.h"

#include <algorithm>
#include <string>

#include "Base/LowerCase.h"

namespace tobrin {
namespace {

struct Range {
  unsigned first;
  unsigned last;
  uint16_t kernelKey;  // of the first; the others follow
  bool isSecondary = false;
};

/// F13 to F15 share their sound with Print Screen, Scroll Lock and Pause, which more keyboards
/// have.
constexpr Range numbers[] = {
    {1, 83, 1},
    {87, 88, 87},
    {91, 93, 183, true},  // F13 to F15
    {99, 107, 186},       // F16 to F24
    {115, 115, 89},       // JIS: underscore
    {125, 125, 124},      // JIS: Yen
    {3597, 3597, 117},    // keypad =
    {3612, 3612, 96},     // keypad Enter
    {3613, 3613, 97},     // right Control
    {3637, 3637, 98},     // keypad /
    {3639, 3639, 99},     // Print Screen
    {3640, 3640, 100},    // right Alt
    {3653, 3653, 119},    // Pause
    {3654, 3654, 86},     // ISO: beside left Shift
    {3655, 3655, 102},    // Home
    {3657, 3657, 104},    // Page Up
    {3663, 3663, 107},    // End
    {3665, 3665, 109},    // Page Down
    {3666, 3667, 110},    // Insert, Delete
    {3675, 3677, 125},    // left and right Meta, Menu
    {57360, 57360, 165},  // media: previous
    {57369, 57369, 163},  // media: next
    {57376, 57376, 113},  // mute
    {57378, 57378, 164},  // media: play
    {57380, 57380, 166},  // media: stop
    {57390, 57390, 114},  // quieter
    {57392, 57392, 115},  // louder
    {57416, 57416, 103},  // Up
    {57419, 57419, 105},  // Left
    {57421, 57421, 106},  // Right
    {57424, 57424, 108},  // Down
    {60999, 60999, 102, true},
    {61000, 61000, 103, true},
    {61001, 61001, 104, true},
    {61003, 61003, 105, true},
    {61005, 61005, 106, true},
    {61007, 61007, 107, true},
    {61008, 61008, 108, true},
    {61009, 61009, 109, true},
    {61010, 61011, 110, true},
};

struct Names {
  uint16_t kernelKey;
  std::string_view names;  // separated by blanks, each with a blank behind it
};

/// In lower case, without what stands between words and without a leading "key" or "digit".
constexpr Names names[] = {
    {1, "escape esc "},
    {2, "1 "},
    {3, "2 "},
    {4, "3 "},
    {5, "4 "},
    {6, "5 "},
    {7, "6 "},
    {8, "7 "},
    {9, "8 "},
    {10, "9 "},
    {11, "0 "},
    {12, "minus - "},
    {13, "equal equals = "},
    {14, "backspace "},
    {15, "tab "},
    {16, "q "},
    {17, "w "},
    {18, "e "},
    {19, "r "},
    {20, "t "},
    {21, "y "},
    {22, "u "},
    {23, "i "},
    {24, "o "},
    {25, "p "},
    {26, "bracketleft leftbrace leftbracket [ "},
    {27, "bracketright rightbrace rightbracket ] "},
    {28, "enter return "},
    {29, "controlleft leftctrl leftcontrol ctrlleft ctrl control lctrl "},
    {30, "a "},
    {31, "s "},
    {32, "d "},
    {33, "f "},
    {34, "g "},
    {35, "h "},
    {36, "j "},
    {37, "k "},
    {38, "l "},
    {39, "semicolon ; "},
    {40, "quote apostrophe ' "},
    {41, "backquote grave backtick ` "},
    {42, "shiftleft leftshift shift lshift "},
    {43, "backslash \\ "},
    {44, "z "},
    {45, "x "},
    {46, "c "},
    {47, "v "},
    {48, "b "},
    {49, "n "},
    {50, "m "},
    {51, "comma , "},
    {52, "period dot . "},
    {53, "slash / "},
    {54, "shiftright rightshift rshift "},
    {55, "numpadmultiply kpasterisk kpmultiply "},
    {56, "altleft leftalt alt lalt "},
    {57, "space spacebar "},
    {58, "capslock caps "},
    {59, "f1 "},
    {60, "f2 "},
    {61, "f3 "},
    {62, "f4 "},
    {63, "f5 "},
    {64, "f6 "},
    {65, "f7 "},
    {66, "f8 "},
    {67, "f9 "},
    {68, "f10 "},
    {69, "numlock "},
    {70, "scrolllock "},
    {71, "numpad7 kp7 "},
    {72, "numpad8 kp8 "},
    {73, "numpad9 kp9 "},
    {74, "numpadsubtract kpminus kpsubtract "},
    {75, "numpad4 kp4 "},
    {76, "numpad5 kp5 "},
    {77, "numpad6 kp6 "},
    {78, "numpadadd kpplus kpadd "},
    {79, "numpad1 kp1 "},
    {80, "numpad2 kp2 "},
    {81, "numpad3 kp3 "},
    {82, "numpad0 kp0 "},
    {83, "numpaddecimal kpdot kpdecimal "},
    {86, "intlbackslash 102nd "},
    {87, "f11 "},
    {88, "f12 "},
    {89, "intlro ro "},
    {92, "convert henkan "},
    {93, "kanamode katakanahiragana "},
    {94, "nonconvert muhenkan "},
    {96, "numpadenter kpenter "},
    {97, "controlright rightctrl rightcontrol ctrlright rctrl "},
    {98, "numpaddivide kpslash kpdivide "},
    {99, "printscreen sysrq print "},
    {100, "altright rightalt altgr altgraph ralt "},
    {102, "home "},
    {103, "arrowup up uparrow "},
    {104, "pageup "},
    {105, "arrowleft left leftarrow "},
    {106, "arrowright right rightarrow "},
    {107, "end "},
    {108, "arrowdown down downarrow "},
    {109, "pagedown "},
    {110, "insert ins "},
    {111, "delete del "},
    {117, "numpadequal kpequal "},
    {119, "pause break "},
    {121, "numpadcomma kpcomma "},
    {122, "lang1 hangeul "},
    {123, "lang2 hanja "},
    {124, "intlyen yen "},
    {125, "metaleft leftmeta osleft super meta win windows command "},
    {126, "metaright rightmeta osright "},
    {127, "contextmenu compose menu "},
    {183, "f13 "},
    {184, "f14 "},
    {185, "f15 "},
    {186, "f16 "},
    {187, "f17 "},
    {188, "f18 "},
    {189, "f19 "},
    {190, "f20 "},
    {464, "fn "},
};

/// As the table has them. One sign alone is a key's own ("-", "_" for none).
std::string plain(std::string_view name) {
  std::string result = lowerCase(name);
  if (result.size() > 1)
    std::erase_if(result, [](char c) { return c == ' ' || c == '_' || c == '-'; });
  for (const std::string_view prefix : {"key", "digit"})
    if (result.size() > prefix.size() && result.starts_with(prefix)) result.erase(0, prefix.size());
  return result;
}

}  // namespace

std::optional<ForeignKeys::Key> ForeignKeys::numbered(unsigned number) {
  for (const Range& range : numbers) {
    if (number < range.first || number > range.last) continue;
    return Key{static_cast<uint16_t>(range.kernelKey + number - range.first), range.isSecondary};
  }
  return std::nullopt;
}

std::optional<uint16_t> ForeignKeys::named(std::string_view name) {
  const std::string wanted = plain(name) + " ";
  if (wanted.find(' ') + 1 != wanted.size() || wanted.size() == 1) return std::nullopt;
  for (const Names& key : names) {
    const auto found = (" " + std::string(key.names)).find(" " + wanted);
    if (found != std::string::npos) return key.kernelKey;
  }
  return std::nullopt;
}

}  // namespace tobrin
