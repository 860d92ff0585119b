/// Ids of packs that come from elsewhere. Pure functions; thread: any.
#pragma once

#include <string>
#include <string_view>

namespace tobrin {

/// An id that is also a plain folder name: the lower-case letters, digits and "-" of `text`, or one
/// made of its bytes where it has none of these.
std::string plainId(std::string_view text);

/// As above, but never the id of a pack that comes with the program, which it would replace.
std::string importedId(std::string_view text);

/// The name of the folder for a pack with this id; ids that differ have folders that differ.
std::string folderNameOf(std::string_view id);

}  // namespace tobrin
