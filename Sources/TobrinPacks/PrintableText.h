/// Text from files on its way to a terminal. Thread: any.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace tobrin {

/// Control characters become spaces: a pack's name must not move the cursor or break a line.
inline std::string printable(std::string text) {
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
  std::replace_if(text.begin(), text.end(), isControl, ' ');
  return text;
}

/// The columns that UTF-8 text takes in a terminal, nearly: one a character.
inline std::size_t widthOf(std::string_view text) {
  const auto beginsCharacter = [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  };
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), beginsCharacter));
}

}  // namespace tobrin
