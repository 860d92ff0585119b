#include "Base/PrintableText.h"

#include <algorithm>

namespace tobrin {

std::string printable(std::string_view text) {
  const auto byteAt = [&](std::size_t i) {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
  };
  std::string shown;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isAsciiControl = byteAt(i) < 0x20 || byteAt(i) == 0x7F;
    // U+0080 to U+009F: terminals obey these, too.
    const bool isLongControl = byteAt(i) == 0xC2 && (byteAt(i + 1) & 0xE0) == 0x80;
    shown += isAsciiControl || isLongControl ? ' ' : text[i];
    if (isLongControl) ++i;
  }
  return shown;
}

std::size_t widthOf(std::string_view text) {
  const auto beginsCharacter = [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  };
  return static_cast<std::size_t>(std::ranges::count_if(text, beginsCharacter));
}

}  // namespace tobrin
