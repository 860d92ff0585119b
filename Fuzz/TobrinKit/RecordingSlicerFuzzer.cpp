// Any short recording under any options that a recipe may hold: takes stay inside the recording and
// every sample is a number.
#include <algorithm>
#include <cmath>
#include <vector>

#include "Base/RecipeError.h"
#include "Building/RecordingSlicer.h"
#include "FuzzInput.h"

namespace {

using tobrin::RecordedTake;
using tobrin::SlicedRecording;
using tobrin::fuzz::require;

void check(const RecordedTake& take, std::size_t frames) {
  require(take.left.size() == take.right.size() && take.left.size() <= frames);
  const auto isNumber = [](float x) { return std::isfinite(x); };
  require(std::all_of(take.left.begin(), take.left.end(), isNumber));
  require(std::all_of(take.right.begin(), take.right.end(), isNumber));
}

void check(const SlicedRecording& result, std::size_t frames) {
  require(result.fates.size() == result.hits.size());
  for (const auto& hit : result.hits)
    require(hit.onset < frames && hit.gapAfter <= frames);
  for (const auto& [group, tiers] : result.down) {
    for (const auto& [tier, takes] : tiers) {
      for (const auto& take : takes)
        check(take, frames);
    }
  }
  for (const auto& take : result.up)
    check(take, frames);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  tobrin::fuzz::Input input(data, size);
  // A low rate and a dozen hits at the most, so that many inputs are tried: under these sanitizers
  // a hit takes milliseconds.
  constexpr double rate = 8000;
  constexpr std::size_t framesAByte = 32;  // 4 ms, so that few bytes make several hits
  constexpr std::size_t longest = 150 * framesAByte;
  tobrin::SlicerOptions options;
  try {
    options = tobrin::slicerOptionsFromJson(input.text(input.take<uint8_t>()));
  } catch (const tobrin::RecipeError&) {
    // Refused: the defaults, then.
  }
  std::vector<float> left, right;
  while (!input.empty() && left.size() < longest) {
    const float amplitude = static_cast<float>(input.take<int8_t>()) / 127;
    for (std::size_t i = 0; i < framesAByte; ++i) {
      const float alternating = i / 4 % 2 == 0 ? amplitude : -amplitude;
      left.push_back(alternating);
      right.push_back(alternating / 2);
    }
  }
  check(tobrin::sliceRecording(left, right, rate, options), left.size());
  return 0;
}
