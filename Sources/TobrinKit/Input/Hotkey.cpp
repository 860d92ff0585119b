#include "Input/Hotkey.h"

#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <iterator>
#include <string_view>

#include "Base/Key.h"

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
    {codeOf(Key::space), "Space"}, {codeOf(Key::enter), "↩"},         {codeOf(Key::tab), "⇥"},
    {codeOf(Key::backspace), "⌫"}, {codeOf(Key::forwardDelete), "⌦"}, {codeOf(Key::escape), "⎋"},
    {codeOf(Key::leftArrow), "←"}, {codeOf(Key::rightArrow), "→"},    {codeOf(Key::downArrow), "↓"},
    {codeOf(Key::upArrow), "↑"},   {codeOf(Key::home), "↖"},          {codeOf(Key::end), "↘"},
    {codeOf(Key::pageUp), "⇞"},    {codeOf(Key::pageDown), "⇟"},      {codeOf(Key::f1), "F1"},
    {codeOf(Key::f2), "F2"},       {codeOf(Key::f3), "F3"},           {codeOf(Key::f4), "F4"},
    {codeOf(Key::f5), "F5"},       {codeOf(Key::f6), "F6"},           {codeOf(Key::f7), "F7"},
    {codeOf(Key::f8), "F8"},       {codeOf(Key::f9), "F9"},           {codeOf(Key::f10), "F10"},
    {codeOf(Key::f11), "F11"},     {codeOf(Key::f12), "F12"},         {codeOf(Key::f13), "F13"},
    {codeOf(Key::f14), "F14"},     {codeOf(Key::f15), "F15"},         {codeOf(Key::f16), "F16"},
    {codeOf(Key::f17), "F17"},     {codeOf(Key::f18), "F18"},         {codeOf(Key::f19), "F19"},
    {codeOf(Key::f20), "F20"}};

/// The US layout, for keys that the current layout gives no character.
constexpr Label qwertyKeys[] = {{codeOf(Key::a), "A"},           {codeOf(Key::b), "B"},
                                {codeOf(Key::c), "C"},           {codeOf(Key::d), "D"},
                                {codeOf(Key::e), "E"},           {codeOf(Key::f), "F"},
                                {codeOf(Key::g), "G"},           {codeOf(Key::h), "H"},
                                {codeOf(Key::i), "I"},           {codeOf(Key::j), "J"},
                                {codeOf(Key::k), "K"},           {codeOf(Key::l), "L"},
                                {codeOf(Key::m), "M"},           {codeOf(Key::n), "N"},
                                {codeOf(Key::o), "O"},           {codeOf(Key::p), "P"},
                                {codeOf(Key::q), "Q"},           {codeOf(Key::r), "R"},
                                {codeOf(Key::s), "S"},           {codeOf(Key::t), "T"},
                                {codeOf(Key::u), "U"},           {codeOf(Key::v), "V"},
                                {codeOf(Key::w), "W"},           {codeOf(Key::x), "X"},
                                {codeOf(Key::y), "Y"},           {codeOf(Key::z), "Z"},
                                {codeOf(Key::digit0), "0"},      {codeOf(Key::digit1), "1"},
                                {codeOf(Key::digit2), "2"},      {codeOf(Key::digit3), "3"},
                                {codeOf(Key::digit4), "4"},      {codeOf(Key::digit5), "5"},
                                {codeOf(Key::digit6), "6"},      {codeOf(Key::digit7), "7"},
                                {codeOf(Key::digit8), "8"},      {codeOf(Key::digit9), "9"},
                                {codeOf(Key::minus), "-"},       {codeOf(Key::equal), "="},
                                {codeOf(Key::leftBracket), "["}, {codeOf(Key::rightBracket), "]"},
                                {codeOf(Key::semicolon), ";"},   {codeOf(Key::quote), "'"},
                                {codeOf(Key::comma), ","},       {codeOf(Key::period), "."},
                                {codeOf(Key::slash), "/"},       {codeOf(Key::backslash), "\\"},
                                {codeOf(Key::grave), "`"}};

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
      Hotkey{codeOf(Key::k), all}, Hotkey{codeOf(Key::s), all}, Hotkey{codeOf(Key::m), all},
      Hotkey{codeOf(Key::t), all}};
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
