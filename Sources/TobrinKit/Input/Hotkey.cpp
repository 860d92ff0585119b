#include "Input/Hotkey.h"

#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace tobrin {
namespace {

struct Label {
  uint32_t id;            // a key code or a modifier
  std::string_view text;  // UTF-8
};

constexpr Label modifierSymbols[] = {{Modifiers::control, "⌃"},
                                     {Modifiers::option, "⌥"},
                                     {Modifiers::shift, "⇧"},
                                     {Modifiers::command, "⌘"}};

/// Keys without a character, and those whose character does not show.
constexpr Label specialKeys[] = {
    {49, "Space"}, {36, "↩"},    {48, "⇥"},    {51, "⌫"},    {117, "⌦"},   {53, "⎋"},
    {123, "←"},    {124, "→"},   {125, "↓"},   {126, "↑"},   {115, "↖"},   {119, "↘"},
    {116, "⇞"},    {121, "⇟"},   {122, "F1"},  {120, "F2"},  {99, "F3"},   {118, "F4"},
    {96, "F5"},    {97, "F6"},   {98, "F7"},   {100, "F8"},  {101, "F9"},  {109, "F10"},
    {103, "F11"},  {111, "F12"}, {105, "F13"}, {107, "F14"}, {113, "F15"}, {106, "F16"},
    {64, "F17"},   {79, "F18"},  {80, "F19"},  {90, "F20"}};

/// The US layout, for keys that the current layout gives no character.
constexpr Label qwertyKeys[] = {
    {0, "A"},  {11, "B"}, {8, "C"},  {2, "D"},  {14, "E"}, {3, "F"},   {5, "G"},  {4, "H"},
    {34, "I"}, {38, "J"}, {40, "K"}, {37, "L"}, {46, "M"}, {45, "N"},  {31, "O"}, {35, "P"},
    {12, "Q"}, {15, "R"}, {1, "S"},  {17, "T"}, {32, "U"}, {9, "V"},   {13, "W"}, {7, "X"},
    {16, "Y"}, {6, "Z"},  {29, "0"}, {18, "1"}, {19, "2"}, {20, "3"},  {21, "4"}, {23, "5"},
    {22, "6"}, {26, "7"}, {28, "8"}, {25, "9"}, {27, "-"}, {24, "="},  {33, "["}, {30, "]"},
    {41, ";"}, {39, "'"}, {43, ","}, {47, "."}, {44, "/"}, {42, "\\"}, {50, "`"}};

template <std::size_t count>
std::optional<std::string> labelOf(uint32_t keyCode, const Label (&labels)[count]) {
  const auto found = std::find_if(std::begin(labels), std::end(labels),
                                  [keyCode](const Label& label) { return label.id == keyCode; });
  if (found == std::end(labels)) return std::nullopt;
  return std::string(found->text);
}

std::string upperCase(const std::string& text) {
  std::string upper;
  icu::UnicodeString::fromUTF8(text).toUpper(icu::Locale::getRoot()).toUTF8String(upper);
  return upper;
}

std::string keyLabel(uint32_t keyCode, const Hotkey::KeyName& keyName) {
  if (const auto special = labelOf(keyCode, specialKeys)) return *special;
  const std::optional<std::string> layoutName = keyName ? keyName(keyCode) : std::nullopt;
  if (layoutName && !layoutName->empty()) return upperCase(*layoutName);
  return labelOf(keyCode, qwertyKeys).value_or("Key " + std::to_string(keyCode));
}

}  // namespace

const std::array<Hotkey, 4>& Hotkey::presets() {
  constexpr Modifiers all = {Modifiers::control | Modifiers::option | Modifiers::command};
  static constexpr std::array<Hotkey, 4> presets = {
      Hotkey{40, all}, Hotkey{1, all}, Hotkey{46, all}, Hotkey{17, all}};  // K, S, M, T
  return presets;
}

std::string Hotkey::displayString(const KeyName& keyName) const {
  std::string text;
  for (const Label& symbol : modifierSymbols)
    if (modifiers.contains(symbol.id)) text += symbol.text;
  return text + keyLabel(keyCode, keyName);
}

std::string Hotkey::spelledOut(const PlatformWords& words, const KeyName& keyName) const {
  std::string text;
  for (std::size_t i = 0; i < words.modifiers.size(); ++i) {
    if (!modifiers.contains(1U << i)) continue;
    text += words.modifiers[i];
    text += words.keySeparator;
  }
  for (const PlatformWords::KeyLabel& key : words.keys)
    if (key.keyCode == keyCode) return text += key.text;
  return text + keyLabel(keyCode, keyName);
}

}  // namespace tobrin
