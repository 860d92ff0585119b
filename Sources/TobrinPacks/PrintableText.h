/// Text from files on its way to a terminal.
#pragma once

#include <algorithm>
#include <string>

namespace tobrin {

/// Control characters become spaces: a pack's name must not move the cursor or break a line.
inline std::string printable(std::string text) {
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
  std::replace_if(text.begin(), text.end(), isControl, ' ');
  return text;
}

}  // namespace tobrin
