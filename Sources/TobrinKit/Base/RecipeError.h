/// What is wrong with a recipe or with slicer options, in words. Thread: any.
#pragma once

#include <stdexcept>

namespace tobrin {

class RecipeError final : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace tobrin
