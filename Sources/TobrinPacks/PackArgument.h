/// Packs and commands as a person names them on the command line. Thread: any.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tobrin {

/// The folder of the pack that `argument` names: a folder, or else a pack of the library by its id.
/// Throws `std::runtime_error`, with the id that was probably meant, where there is neither.
[[nodiscard]] std::filesystem::path packFolder(const std::string& argument);

/// ", did you mean 'NAME'?" with the one of `names` that is at most two typing mistakes away; empty
/// where none is.
[[nodiscard]] std::string didYouMean(const std::string& word,
                                     const std::vector<std::string>& names);

}  // namespace tobrin
