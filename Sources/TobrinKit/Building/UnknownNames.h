/// Finds names in a JSON document that the program does not read: most likely they are misspelt or
/// in the wrong place. They are no error, but their author believes that they work. Thread: any.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tobrin {

/// A line for each name in `json` that is not in `example`, a document of the same kind with every
/// known name: which one, and what may have been meant. A list's first entry is the example for
/// all; tiers are known in any letter case. Throws `RecipeError` where a text is no JSON.
std::vector<std::string> unknownNames(std::string_view json, std::string_view example);

/// Such examples.
std::string exampleRecipe();
std::string exampleManifest();

}  // namespace tobrin
