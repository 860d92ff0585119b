/// Text from files on its way to a terminal. Thread: any.
#pragma once

#include <string>
#include <string_view>

namespace tobrin {

/// UTF-8 text with a space for each control character: a pack's name must not move the cursor or
/// break a line.
std::string printable(std::string_view text);

/// The columns that UTF-8 text takes in a terminal, nearly: one a character.
std::size_t widthOf(std::string_view text);

}  // namespace tobrin
