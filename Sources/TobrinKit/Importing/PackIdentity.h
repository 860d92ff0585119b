/// Ids of packs that come from elsewhere. Pure functions; thread: any.
#pragma once

#include <string>
#include <string_view>

namespace tobrin {

/// An id that is a plain folder name too: lower-case letters, digits and "-" of `text`; one made of
/// its bytes where it has none of them.
std::string plainId(std::string_view text);

/// As above, but none of the packs that come with the program, whose place it would take.
std::string importedId(std::string_view text);

/// The name of the folder for a pack with this id; ids that differ have folders that differ.
std::string folderNameOf(std::string_view id);

}  // namespace tobrin
