// Any bytes as a recipe and as slicer options: refused with a text, or decoded to what encodes and
// decodes alike.
#include <string_view>

#include "Building/PackRecipe.h"
#include "Building/RecipeError.h"
#include "FuzzInput.h"

namespace {

using tobrin::PackRecipe;

void asRecipe(std::string_view text) {
  try {
    const auto recipe = PackRecipe::fromJson(text);
    tobrin::fuzz::require(PackRecipe::fromJson(recipe.toJson()) == recipe);
    tobrin::fuzz::require(recipe.credits().size() <= text.size());
  } catch (const tobrin::RecipeError&) {
    // Refused.
  }
}

void asOptions(std::string_view text) {
  try {
    const auto options = tobrin::slicerOptionsFromJson(text);
    tobrin::fuzz::require(tobrin::slicerOptionsFromJson(tobrin::toJson(options)) == options);
  } catch (const tobrin::RecipeError&) {
    // Refused.
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  asRecipe(text);
  asOptions(text);
  return 0;
}
