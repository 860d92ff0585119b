// Any bytes as a recipe and as slicer options: refused with a text, or decoded to a value that
// encodes and decodes unchanged.
#include "Building/PackRecipe.h"

#include "Base/RecipeError.h"
#include "FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  using namespace tobrin;
  const std::string_view text = fuzz::textOf(data, size);
  fuzz::requireRoundTrip<RecipeError>(text, PackRecipe::fromJson, [&](const PackRecipe& recipe) {
    fuzz::require(recipe.credits().size() <= text.size());
    return recipe.toJson();
  });
  fuzz::requireRoundTrip<RecipeError>(text, slicerOptionsFromJson,
                                      [](const auto& options) { return toJson(options); });
  return 0;
}
